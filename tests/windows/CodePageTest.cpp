// Text conversion by the system itself, beside that of the library on this system.

#include "tests/windows/OnWindows.h"

#include <gmock/gmock.h>

namespace hosts {
namespace {

using namespace endtoend;

struct Language {
    const char *name;
    uint32_t codePage;
};

std::ostream &operator<<(std::ostream &out, const Language &language) {
    return out << language.codePage;
}

class CodePage : public OnWindows, public testing::WithParamInterface<Language> {
  protected:
    CodePage() : windowsPeer(Medium::tcp), ownPeer(Medium::tcp) { SetAnsiCodePage(GetParam().codePage); }
    ~CodePage() override {
        ClosePrinter();
        SetAnsiCodePage(1252);
    }

    CallingHost StartHostInLanguage() { return StartHost({{"LC_ALL", GetParam().name}}); }
    void ConnectBoth(CallingHost &host) {
        host.Connect(Wlan(windowsPeer.TcpPort()));
        ASSERT_EQ(ownPeer.Connect(Form::plain), 1);
    }

    RawPeer windowsPeer;
    RawPeer ownPeer;
};

std::string Hex(const std::string &bytes) {
    std::string text;
    for (const char byte : bytes)
        text += {"0123456789ABCDEF"[byte >> 4 & 15], "0123456789ABCDEF"[byte & 15]};
    return text;
}

// As the calling program writes what becomes of each UTF-16 unit.
std::vector<std::string> OwnLines() {
    std::vector<std::string> lines;
    for (unsigned unit = 1; unit < 0x10000; ++unit) {
        const NadrelChar text[] = {static_cast<NadrelChar>(unit), u'A', 0};
        const std::string number{static_cast<char>(unit >> 8), static_cast<char>(unit)};
        lines.push_back(Hex(number) + " " + Hex(U2A(text)));
    }
    return lines;
}

TEST_P(CodePage, ConvertsEveryUnitToTheSameBytesOnBothSystems) {
    CallingHost host = StartHostInLanguage();
    ASSERT_EQ(host.Ask("code page"), std::to_string(GetParam().codePage));
    ConnectBoth(host);
    ASSERT_EQ(host.Ask("convert every unit"), "done");
    std::vector<std::string> theirs = host.Lines();
    std::erase_if(theirs, [](const std::string &line) { return line.starts_with("= "); });
    const std::vector<std::string> own = OwnLines();
    ASSERT_EQ(theirs.size(), own.size());
    for (size_t i = 0; i < own.size(); ++i)
        EXPECT_EQ(own[i], theirs[i]);
}

TEST_P(CodePage, ConvertsTextThatDoesNotFitToTheSameBytesOnBothSystems) {
    CallingHost host = StartHostInLanguage();
    ConnectBoth(host);
    const std::string tail = "\\u20AC\\uD83D\\uDE00\\u4E2D\\uD83D\\uDE00\\uDC00\\u4E2D\\uAC00\\u3042z";
    const std::u16string ownTail = u"\u20AC\U0001F600\u4E2D\U0001F600\xDC00\u4E2D\uAC00\u3042z";
    for (size_t length = 0; length < 20; ++length) {
        const std::string head(length, 'a');
        const std::u16string ownHead(length, u'a');
        EXPECT_EQ(host.Ask("text of U2A(" + Quoted(head + tail) + ")"),
                  Hex(U2A((ownHead + ownTail).c_str())));
    }
}

// Every ANSI code page that Wine has, by a language that has it.
INSTANTIATE_TEST_SUITE_P(, CodePage,
                         testing::Values(Language{"C", 1252}, Language{"th_TH.UTF-8", 874},
                                         Language{"ja_JP.UTF-8", 932}, Language{"zh_CN.UTF-8", 936},
                                         Language{"ko_KR.UTF-8", 949}, Language{"zh_TW.UTF-8", 950},
                                         Language{"cs_CZ.UTF-8", 1250}, Language{"ru_RU.UTF-8", 1251},
                                         Language{"el_GR.UTF-8", 1253}, Language{"tr_TR.UTF-8", 1254},
                                         Language{"he_IL.UTF-8", 1255}, Language{"ar_EG.UTF-8", 1256},
                                         Language{"lt_LT.UTF-8", 1257}, Language{"vi_VN.UTF-8", 1258},
                                         Language{"hi_IN.UTF-8", 65001}),
                         testing::PrintToStringParamName());

} // namespace
} // namespace hosts
