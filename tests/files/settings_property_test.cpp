// Random operations on random bytes, compared with the plain reference byte for byte.
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "config/text.h"
#include "files/exchanged_file.h"
#include "files/file_settings_service.h"
#include "files/random_settings.h"
#include "files/reference_settings.h"
#include "files/sectioned_text.h"
#include "support/temporary_folder.h"
#include "text/text_encoding.h"

namespace zolvane {
namespace {

// Whatever the index says must be what the bytes say, also in places that the last change did not touch.
testing::AssertionResult AgreeOnEverything(const SectionedText& text, const ReferenceSettings& reference) {
  if (text.Bytes() != reference.Bytes()) {
    return testing::AssertionFailure() << testing::PrintToString(text.Bytes()) << "\ninstead of\n"
                                       << testing::PrintToString(reference.Bytes());
  }
  for (const std::string section : {"A", "B", "Ä", "C", "", "Ω"}) {
    for (const std::string key : {"x", "y", "ä", "z", "水", "w"}) {
      if (text.Find(section, key) != reference.Read(section, key)) {
        return testing::AssertionFailure()
               << section << '/' << key << " in " << testing::PrintToString(text.Bytes());
      }
    }
  }
  return testing::AssertionSuccess();
}

bool WriteInMemory(SectionedText& text, const std::string& section, const std::string& key,
                   const std::string& value) {
  const auto edit = text.PlanValue(section, key, value);
  if (edit) {
    text.Apply(*edit);
  }
  return edit.has_value();
}

TEST(SettingsProperty, AnyOperationsOnAnyBytesGiveWhatThePlainRulesGive) {
  constexpr unsigned texts = 700;
  constexpr int operations = 12;
  for (unsigned seed = 1; seed <= texts; ++seed) {
    RandomSettings random{seed};
    const std::string bytes = random.FileBytes();
    SectionedText text{bytes};
    ReferenceSettings reference{bytes};
    for (int operation = 0; operation < operations; ++operation) {
      const std::string section = random.Section();
      const std::string key = random.Key();
      const std::string value = random.Value();
      if (random.Below(8) == 0) {
        text.Apply(text.PlanBlankLine().value());
        reference.AppendBlankLine();
      } else {
        ASSERT_EQ(WriteInMemory(text, section, key, value), reference.Write(section, key, value))
            << "seed " << seed << ": " << testing::PrintToString(section + '/' + key + '/' + value);
      }
      ASSERT_TRUE(AgreeOnEverything(text, reference))
          << "seed " << seed << ", operation " << operation << ": "
          << testing::PrintToString(section + '/' + key + '/' + value);
    }
  }
}

TEST(SettingsProperty, AValueThatWasWrittenIsReadBack) {
  for (unsigned seed = 1; seed <= 500; ++seed) {
    RandomSettings random{seed};
    SectionedText text{random.FileBytes() + "\r\n;\xE4\r\n"};
    const std::string section = random.Section();
    const std::string key = random.Key();
    if (WriteInMemory(text, section, key, "20 °C")) {
      ASSERT_EQ(text.Find(section, key), "20 °C") << "seed " << seed;
    }
  }
}

// Far more names than one section of a sample has, long and short, in letters of both cases.
class ManyNames {
 public:
  explicit ManyNames(unsigned seed) : random_{seed} {
    for (int name = 0; name < 60; ++name) {
      names_.push_back(AnyName(1 + random_.Below(24)));
    }
  }

  const std::string& Any() { return names_[random_.Below(names_.size())]; }

  std::string InAnyCase(std::string name) {
    for (char& letter : name) {
      letter =
          random_.Below(2) == 0 && letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 32) : letter;
    }
    return random_.Below(2) == 0 ? Replaced(name, "ÿ", "Ÿ") : Replaced(name, "é", "É");
  }

  std::string Text() {
    std::string text;
    for (int line = 0; line < 600; ++line) {
      text += random_.Below(40) == 0 ? '[' + InAnyCase(Any()) + ']'
                                     : InAnyCase(Any()) + '=' + std::to_string(line);
      text += "\r\n";
    }
    return random_.Below(2) == 0 ? text : Windows1252FromUtf8(text);
  }

 private:
  std::string AnyName(std::size_t length) {
    static constexpr std::array<std::string_view, 8> pieces{"a", "b", "item", "1", "2", "é", "ÿ", " z"};
    std::string name;
    while (name.size() < length) {
      name += pieces[random_.Below(pieces.size())];
    }
    return name;
  }

  RandomSettings random_;
  std::vector<std::string> names_;
};

TEST(SettingsProperty, EveryNameInAnyCaseLeadsWhereThePlainRulesLead) {
  for (unsigned seed = 1; seed <= 4; ++seed) {
    ManyNames names{seed};
    const std::string bytes = names.Text();
    const SectionedText text{bytes};
    const ReferenceSettings reference{bytes};
    int found = 0;
    for (int look = 0; look < 150; ++look) {
      const std::string section = names.InAnyCase(names.Any());
      const std::string key = names.InAnyCase(names.Any());
      const auto value = text.Find(section, key);
      ASSERT_EQ(value, reference.Read(section, key)) << "seed " << seed << ": " << section << '/' << key;
      found += value ? 1 : 0;
    }
    EXPECT_GT(found, 0) << "seed " << seed;
  }
}

TEST(SettingsProperty, ArbitraryBytesAreReadAndWrittenWithoutHarm) {
  for (unsigned seed = 1; seed <= 300; ++seed) {
    RandomSettings random{seed};
    std::string bytes(random.Below(300), '\0');
    for (char& byte : bytes) {
      byte = static_cast<char>(random.Below(256));
    }
    SectionedText text{bytes};
    ASSERT_TRUE(WriteInMemory(text, "A", "x", "1")) << "seed " << seed;
    ASSERT_EQ(text.Bytes().substr(0, bytes.size()), bytes) << "seed " << seed;
    ASSERT_EQ(text.Find("A", "x"), "1") << "seed " << seed;
  }
}

// Two services with and without a second copy beside the file, and another program that changes it now and
// then.
class FileUnderRandomUse {
 public:
  explicit FileUnderRandomUse(unsigned seed) : random_{seed}, reference_{""} {
    for (const bool keepsCopy : {true, true, false}) {
      services_.push_back(std::make_unique<FileSettingsService>([keepsCopy](const std::string& path) {
        return OpenExchangedFile(path, {.Survives = Durability::OnFlush, .KeepsCopy = keepsCopy});
      }));
    }
    ChangeByAnotherProgram();
  }

  testing::AssertionResult OneStep() {
    const std::string path = folder_.Path("file.ini");
    FileSettingsService& service = *services_[random_.Below(random_.Below(2) == 0 ? 1 : services_.size())];
    const std::string section = random_.Section();
    const std::string key = random_.Key();
    const std::string value = random_.Value();
    const std::size_t choice = random_.Below(12);
    bool isAsExpected = true;
    if (choice == 0) {
      ChangeByAnotherProgram();
    } else if (choice == 1) {
      isAsExpected = service.AppendBlankLine(path).Ok();
      reference_.AppendBlankLine();
    } else if (choice < 5) {
      isAsExpected =
          service.ReadValue(section, key, path, "-") == reference_.Read(section, key).value_or("-");
    } else {
      isAsExpected =
          service.WriteValue(section, key, path, value).Ok() == reference_.Write(section, key, value);
    }
    if (isAsExpected && BytesOf(path) == reference_.Bytes()) {
      return testing::AssertionSuccess();
    }
    return testing::AssertionFailure()
           << testing::PrintToString(section + '/' + key + '/' + value) << " gives\n"
           << testing::PrintToString(BytesOf(path)) << "\ninstead of\n"
           << testing::PrintToString(reference_.Bytes());
  }

  std::vector<std::string> NamesInTheEnd() {
    services_.clear();
    return folder_.Names();
  }

 private:
  // Never to nothing: a file that had content is not empty, but cannot be read.
  void ChangeByAnotherProgram() {
    reference_.Replace(random_.FileBytes() + ";");
    if (random_.Below(2) == 0) {
      folder_.Put("file.ini", reference_.Bytes());
    } else {
      folder_.PutByRename("file.ini", reference_.Bytes());
    }
  }

  RandomSettings random_;
  TemporaryFolder folder_;
  ReferenceSettings reference_;
  std::vector<std::unique_ptr<FileSettingsService>> services_;
};

TEST(SettingsProperty, TheFileOnTheDiskIsAlwaysTheOneThatThePlainRulesGive) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    FileUnderRandomUse file{seed};
    for (int step = 0; step < 150; ++step) {
      ASSERT_TRUE(file.OneStep()) << "seed " << seed << ", step " << step;
    }
    ASSERT_EQ(file.NamesInTheEnd(), std::vector<std::string>{"file.ini"});
  }
}

}  // namespace
}  // namespace zolvane
