// Texts on their way between the add-in and its host, at their edges.
#include <gtest/gtest.h>

#include <hestrion_cmds.h>

#include <optional>
#include <string>

#include "bench/windows/com/offered_object.h"
#include "bench/windows/com/offered_settings.h"
#include "shell/windows/host/com_host.h"
#include "shell/windows/host/com_ini_file_service.h"
#include "shell/windows/host/late_bound_names.h"
#include "win32/text.h"

namespace zolvane {
namespace {

using namespace std::string_literals;

// Beside each other: what the add-in has, and what the host has.
struct Spelling {
  std::string Ours;
  std::wstring Theirs;
};

const std::vector<Spelling>& Spellings() {
  static const std::vector<Spelling> spellings{
      {"", L""},
      {"a\0b\0"s, L"a\0b\0"s},
      {"Z\xC3\xBCrich \xE2\x82\xAC", L"Z\x00FCrich \x20AC"},
      {"\xF0\x9F\xA7\xAA", L"\xD83E\xDDEA"},
      {std::string(1 << 20, 'x'), std::wstring(1 << 20, L'x')},
      {std::string(300'000, '\x7F') + "\xC3\xA4", std::wstring(300'000, L'\x7F') + L'\x00E4'},
  };
  return spellings;
}

UniqueBstr RawBstr(const std::wstring& text) {
  return UniqueBstr{SysAllocStringLen(text.data(), static_cast<UINT>(text.size()))};
}

std::wstring Units(BSTR text) {
  return {text, SysStringLen(text)};
}

TEST(Bstr, TextGoesBothWaysUnchanged) {
  for (const auto& [ours, theirs] : Spellings()) {
    EXPECT_TRUE(Units(Bstr(ours).Get()) == theirs) << theirs.size();
    EXPECT_TRUE(Utf8FromBstr(RawBstr(theirs).Get()) == ours) << ours.size();
  }
}

TEST(Bstr, NullIsTheEmptyText) {
  EXPECT_EQ(Utf8FromBstr(nullptr), "");
}

TEST(Bstr, TheEmptyTextIsNotNull) {
  EXPECT_NE(Bstr(std::string_view{}).Get(), nullptr);
  EXPECT_EQ(SysStringLen(Bstr(std::string_view{}).Get()), 0U);
}

TEST(Bstr, WhatIsNoTextIsReplaced) {
  EXPECT_EQ(Utf8FromBstr(RawBstr(L"a\xD83E").Get()), "a\xEF\xBF\xBD");
  EXPECT_EQ(Utf8FromBstr(RawBstr(L"\xDDEAz").Get()), "\xEF\xBF\xBDz");
  EXPECT_EQ(Units(Bstr("a\xFFz").Get()), L"a\xFFFDz");
}

// ---- Through the instrument link

// Answers with the text as it is, and notes what came in.
struct RawLink {
  std::wstring Command;
  std::optional<std::wstring> Reply;  // nothing: a null text

  std::shared_ptr<HostObject> Offered() {
    return WrapHostObject(Offer({{names::instrumentLink, DISPATCH_PROPERTYGET,
                                  [this](const MemberUse& use) {
                                    return use.Give(
                                        Offer({{names::sendCommand, DISPATCH_METHOD,
                                                [this](const MemberUse& send) { return Take(send); }}}));
                                  }}})
                              .Get());
  }

 private:
  HRESULT Take(const MemberUse& send) {
    BSTR* const reply = send.TextVariableAt(1);
    EXPECT_NE(*send.TextVariableAt(0), nullptr);
    EXPECT_NE(*reply, nullptr);
    Command = Units(*send.TextVariableAt(0));
    const UniqueBstr before{*reply};
    *reply = Reply ? RawBstr(*Reply).Detach() : nullptr;
    return send.Give(std::optional<bool>{true});
  }
};

TEST(LinkTexts, CommandAndReplyAreUnchanged) {
  RawLink raw;
  for (const auto& [ours, theirs] : Spellings()) {
    raw.Reply = theirs;
    auto command = ours;
    std::string reply = "before";
    EXPECT_EQ(raw.Offered()->Link()->SendCommand(command, reply, 0), true);
    EXPECT_TRUE(raw.Command == theirs) << theirs.size();
    EXPECT_TRUE(reply == ours) << ours.size();
    EXPECT_TRUE(command == ours) << ours.size();
  }
  EXPECT_EQ(OfferedObjectsAlive(), 0);
}

TEST(LinkTexts, ANullReplyIsEmpty) {
  RawLink raw;
  std::string command;
  std::string reply = "before";
  EXPECT_EQ(raw.Offered()->Link()->SendCommand(command, reply, 0), true);
  EXPECT_EQ(reply, "");
}

// ---- Through the settings-file service

// Gives back what was written last, or a null text.
class LastText final : public IniFileService {
 public:
  explicit LastText(std::string& text) : text_{text} {}

  std::optional<std::string> ReadValue(std::string_view, std::string_view, std::string_view,
                                       std::string_view fallback) override {
    return text_ + std::string{fallback};
  }
  Status WriteValue(std::string_view, std::string_view, std::string_view, std::string_view value) override {
    text_ = value;
    return Status::Success();
  }
  std::optional<std::vector<std::string>> SplitText(std::string_view delimiter,
                                                    std::string_view text) override {
    return std::vector<std::string>{std::string{text}, std::string{delimiter}, ""};
  }

 private:
  std::string& text_;
};

TEST(SettingsTexts, ValuesAreUnchangedBothWays) {
  OleInitialize(nullptr);
  {
    std::string last;
    const OfferedSettings offered{[&last] { return std::make_shared<LastText>(last); }};
    const auto service = CreateComIniFileService();
    ASSERT_TRUE(service);
    for (const auto& spelling : Spellings()) {
      const auto& text = spelling.Ours;
      EXPECT_TRUE(service->WriteValue("S", "K", "file", text).Ok());
      EXPECT_TRUE(last == text) << text.size();
      EXPECT_TRUE(service->ReadValue("S", "K", "file", "") == text) << text.size();
      EXPECT_TRUE(service->ReadValue("S", "K", "file", text) == text + text) << text.size();
      const auto pieces = service->SplitText(",", text);
      EXPECT_TRUE(pieces && *pieces == (std::vector<std::string>{text, ",", ""})) << text.size();
    }
  }
  EXPECT_EQ(OfferedServicesAlive(), 0);
  OleUninitialize();
}

}  // namespace
}  // namespace zolvane
