// Sections "DeviceType" and "CageType".
//
// Loads take an item number, or "" for the installed one (the variable then receives its number), and a file,
// or "" for ConfigFilePath. They never fail as a whole: what is missing or does not convert is empty, zero or
// false. Saves take the file that they are given; a failed write is silent.
#pragma once

#include <string>
#include <string_view>

#include "config/configuration.h"
#include "config/record_table.h"
#include "config/records.h"

namespace zolvane {

inline constexpr std::string_view deviceTypeSection = "DeviceType";
inline constexpr std::string_view cageTypeSection = "CageType";

// What each value of a section is called, and how it stands in the file.
extern const RecordTable<DeviceTypeRecord> deviceTable;
extern const RecordTable<CageTypeRecord> cageTable;

// Places in the record lines, from 0, by which detection looks up what the instrument reports.
inline constexpr std::size_t deviceCodePiece = 2;
inline constexpr std::size_t cageCodePiece = 1;

DeviceTypeRecord LoadDeviceType(const Configuration& configuration, std::string& item, std::string_view file);

// The section keys are single keys, so saving several devices leaves those of the last one.
void SaveDeviceType(const Configuration& configuration, const DeviceTypeRecord& record,
                    std::string_view file);

CageTypeRecord LoadCageType(const Configuration& configuration, std::string& item, std::string_view file);
void SaveCageType(const Configuration& configuration, const CageTypeRecord& record, std::string_view file);

}  // namespace zolvane
