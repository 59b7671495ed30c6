// zolvane as scripts and people meet it: arguments, what it prints, and its exit status, in a folder with a
// copy of the sample and with a simulated instrument that keeps its memory in that folder.
#pragma once

#include <gtest/gtest.h>

#include <deque>
#include <filesystem>
#include <fstream>
#include <functional>
#include <nlohmann/json.hpp>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "instrument/links/interrupt_flag.h"
#include "support/file_bytes.h"
#include "support/temporary_folder.h"
#include "zolvane/zolvane_program.h"

namespace zolvane {

using Json = nlohmann::ordered_json;

struct ProgramRun {
  int Status = -1;
  std::string Output;
  std::string Errors;

  std::string All() const { return Output + Errors; }
  Json Document() const { return Json::parse(Output); }
};

// Answers what it is asked with what was prepared, then with nothing.
class PreparedUser final : public Questioner {
 public:
  explicit PreparedUser(std::deque<std::string> answers) : answers_{std::move(answers)} {}

  std::optional<std::string> Ask(std::string_view text) override {
    Asked.append(text);
    if (answers_.empty()) {
      return std::nullopt;
    }
    auto answer = answers_.front();
    answers_.pop_front();
    return answer;
  }

  std::string Asked;

 private:
  std::deque<std::string> answers_;
};

class Zolvane : public ::testing::Test {
 protected:
  using Words = std::vector<std::string>;

  Zolvane() { Folder.Put("Zolvane.ini", Sample()); }

  ~Zolvane() override { ProgramInterrupt().Lower(); }

  static std::string Sample() { return BytesOf(std::string{ZOLVANE_SAMPLES_PATH} + "/Zolvane.ini"); }

  // Without an instrument.
  ProgramRun RunAlone(Words words, Questioner* user = nullptr) {
    words.insert(words.begin(), {"--folder", Folder.Path()});
    std::ostringstream output;
    std::ostringstream errors;
    ProgramRun run;
    run.Status = RunZolvane(words, output, errors, user);
    run.Output = output.str();
    run.Errors = errors.str();
    return run;
  }

  ProgramRun Run(Words words, Questioner* user = nullptr) {
    words.insert(words.begin(), {"--link", Link()});
    return RunAlone(std::move(words), user);
  }

  // Its document, which the schema allows.
  Json RunJson(Words words) {
    words.insert(words.begin(), "--json");
    const auto run = Run(std::move(words));
    const auto document = run.Document();
    EXPECT_EQ(document.at("exit_status"), run.Status);
    documents_.push_back(document.dump());
    return document;
  }

  void TearDown() override { ValidateDocuments(); }

  std::string Link() const { return "sim:" + Folder.Path("memory.json"); }
  std::string Configuration() const { return Folder.Read("Zolvane.ini"); }
  std::string Memory() const { return Folder.Read("memory.json"); }

  // What the instrument has kept, of a key.
  Json Kept(const std::string& key) const { return KeptIn(Json::parse(Memory()), key); }

  void Replace(std::string_view from, std::string_view to) const {
    auto text = Configuration();
    const auto at = text.find(from);
    ASSERT_NE(at, std::string::npos) << from;
    Folder.Put("Zolvane.ini", text.replace(at, from.size(), to));
  }

  TemporaryFolder Folder;

 private:
  // The member of that name, at whatever depth.
  static Json KeptIn(const Json& json, const std::string& key) {
    if (json.is_object()) {
      if (json.contains(key)) {
        return json.at(key);
      }
      for (const auto& member : json) {
        if (auto found = KeptIn(member, key); !found.is_null()) {
          return found;
        }
      }
    }
    return nullptr;
  }

  void ValidateDocuments() const {
#ifndef _WIN32
    if (documents_.empty()) {
      return;
    }
    std::string lines;
    for (const auto& document : documents_) {
      lines += document + "\n";
    }
    const auto file = Folder.Put("documents.jsonl", lines);
    const auto command = std::string{"python3 "} + ZOLVANE_SOURCE_PATH + "/tests/zolvane/validate.py " +
                         ZOLVANE_SOURCE_PATH + "/docs/schema/zolvane-1.json " + file;
    EXPECT_EQ(std::system(command.c_str()), 0) << lines;
#endif
  }

  std::vector<std::string> documents_;
};

}  // namespace zolvane
