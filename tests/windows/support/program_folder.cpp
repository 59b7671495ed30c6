#include "windows/support/program_folder.h"

#include <fstream>
#include <iterator>
#include <stdexcept>

namespace zolvane {

std::string ContentOf(const std::filesystem::path& file) {
  std::ifstream stream{file, std::ios::binary};
  return {std::istreambuf_iterator<char>{stream}, {}};
}

void Store(const std::filesystem::path& file, const std::string& content) {
  std::ofstream stream{file, std::ios::binary | std::ios::trunc};
  stream << content;
  if (!stream.flush()) {
    throw std::runtime_error{"cannot write " + file.string()};
  }
}

std::string SampleFileText() {
  const auto sample = ContentOf(std::filesystem::path{ZOLVANE_SAMPLES_PATH} / "Zolvane.ini");
  return !sample.empty() ? sample : throw std::runtime_error{"the sample configuration is missing"};
}

std::string SmallFileText() {
  return "[DeviceType]\nInstalled=1\nItem1=\"Large\",1,\"ZV300\"\nUploadCalibrationData="
         "1\nDownloadCalibrationData=1\n"
         "ImportCalibrationData=1\nExportCalibrationData=1\nSDXYEncoderMMStepFactorOff=2\nSensorEnableRFID="
         "1\n"
         "[CageType]\nInstalled=1\nItem1=\"Wide "
         "Module\",MICROTITER,1,0,0,2150,120,1875,90\nCageReleaseHeight=152\n"
         "[Device_TypeLarge_CageWide Module]\nAxis1=Z,0.5\nAxis2=S,2\nAxis3=SDX,0.02\nAxis4=SDY,0.04\n"
         "[HeadType]\nInstalled=1\nDefault=first=\"Comb\"\n"
         "Item1=\"Block\",MICROTITER,300,300,5,96,0.5,1,1,0,0,0,1180,31.5,11840.5,12265,96_CH,0,\"TAG1\"\n"
         "Item2=\"Comb\",SERIALDILUTE,12.5,12.5,1,8,0.25,0,1,0,1600,380,1450,25.4,10192,10624.25,8_CH,1,"
         "\"TAG2\"\n"
         "SDHomeSensorSeekOffsetMM=6\n"
         "[NestType]\nInstalled=1\nItem1=\"Short Nest\",NEST8,\"1A\",1_CH_SHORT,1,3260,2485,131.20\n"
         "[TipType]\nInstalled=1\n"
         "Item1=\"Large Tips\",SERIALDILUTE,1250,20,8,12,0,96,118,7840,98.5,1,1,0,1,0,0,0,\"Own\"\n"
         "[VolumeCorrection_Own]\n1Item=A,B,3\n"
         "[Z_Calibration]\nMountHeight=164.35\nHeadDepth_8ch=46.25\nDeltaZ=24.5\n"
         "[NestCalibration]\nItem1=NEST8,3258,2487,7743,2488,12221,2482\n"
         "[Calibration_Large]\nItem1=STAGE1,1612,2004,4215,3180,14113,3183,4213,9482\n"
         "[Position_Large]\nItem1=1,\"STAGE1\",1612,2004\n"
         "[PlateType]\nItem1=\"Plate\",1,2,3,4,5,6,7,8,9,10,11,12,13,14,15\n"
         "[PumpControl]\nModuleInstalled=1\n";
}

ProgramFolder& ProgramFolder::OfThisRun() {
  static ProgramFolder folder;
  return folder;
}

ProgramFolder::ProgramFolder()
    : path_{std::filesystem::temp_directory_path() / ("zolvane-" + std::to_string(GetCurrentProcessId()))} {
  OleInitialize(nullptr);
  std::filesystem::create_directories(path_);
  std::filesystem::copy_file(std::filesystem::absolute(ZOLVANE_MODULE_PATH), path_ / "HZOCalibrateDevice.dll",
                             std::filesystem::copy_options::overwrite_existing);
  module_ = std::make_unique<AddInFile>((path_ / "HZOCalibrateDevice.dll").wstring());
}

ProgramFolder::~ProgramFolder() {
  module_ = nullptr;
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace zolvane
