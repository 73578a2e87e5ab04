#include "platform/windows/com_host.h"

#include <fstream>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "platform/failure.h"
#include "platform/windows/wide_text.h"
#include "tests/outside/temporary_folder.h"
#include "tests/platform/failure_of.h"
#include "tests/platform/windows/automation_server/server_names.h"

namespace quillon {
namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/// Where the test's registration lies, so that it can be taken back.
class Registration {
  public:
    ~Registration() {
        for (const std::wstring& key : keys_)
            RegDeleteTreeW(HKEY_LOCAL_MACHINE, key.c_str());
    }

    void Put(const std::wstring& key, const std::wstring& value) {
        const std::wstring path = L"Software\\Classes\\" + key;
        const auto size = static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t));
        ASSERT_EQ(
            RegSetKeyValueW(HKEY_LOCAL_MACHINE, path.c_str(), nullptr, REG_SZ, value.c_str(), size),
            ERROR_SUCCESS);
        keys_.push_back(path);
    }

    /// `kind` is how the object is had: L"InprocServer32" or L"LocalServer32".
    void RegisterServer(const std::wstring& kind, const std::wstring& file) {
        const std::wstring ofClass = std::wstring(L"CLSID\\") + test_server::ClassText;
        Put(L"Homeseer.application", L"A host for tests");
        Put(L"Homeseer.application\\CLSID", test_server::ClassText);
        Put(ofClass + L"\\" + kind, file);
        Put(ofClass, L"A host for tests");
    }

  private:
    std::vector<std::wstring> keys_;
};

std::wstring BesideThisProgram(const std::wstring& name) {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path.substr(0, path.rfind(L'\\') + 1) + name;
}

enum class Server { InProcess, OwnProcess };

class ComHostTest : public testing::TestWithParam<Server> {
  protected:
    ComHostTest() {
        SetEnvironmentVariableW(test_server::JournalVariable, (folder_ / "calls").c_str());
        Configure("");
        if (GetParam() == Server::InProcess) {
            registration_.RegisterServer(L"InprocServer32",
                                         BesideThisProgram(L"automation_server.dll"));
        } else {
            registration_.RegisterServer(L"LocalServer32",
                                         BesideThisProgram(L"automation_server.exe"));
        }
    }

    void Configure(const std::string& settings) { folder_.MakeFile("calls.ini", settings); }

    /// The calls that have arrived, but for the object's beginning.
    std::vector<std::string> Calls() {
        std::istringstream journal(folder_.Content("calls"));
        std::vector<std::string> calls;
        for (std::string line; std::getline(journal, line);)
            if (line != "(begun)") calls.push_back(line);
        return calls;
    }

    outside::TemporaryFolder folder_;
    Registration registration_;
};

INSTANTIATE_TEST_SUITE_P(Servers, ComHostTest,
                         testing::Values(Server::InProcess, Server::OwnProcess),
                         [](const auto& server) {
                             return server.param == Server::InProcess ? "InProcess" : "OwnProcess";
                         });

TEST_P(ComHostTest, SettingsComeFromTheObject) {
    Configure("[NPFrame]\r\nLibraryRoot=D:\\Music\r\n");
    ASSERT_TRUE(ComHost::IsInstalled());
    ComHost host;
    EXPECT_EQ(host.GetINISetting("NPFrame", "LibraryRoot", "none", "Quillon.ini"), "D:\\Music");
    EXPECT_EQ(host.GetINISetting("NPFrame", "PlayListPath", "fallback", "Quillon.ini"), "fallback");
    EXPECT_EQ(host.GetINISetting("NPFrame", "Empty", "", "Quillon.ini"), "");
    EXPECT_THAT(Calls(), ElementsAre("GetINISetting|NPFrame|LibraryRoot|none|Quillon.ini",
                                     "GetINISetting|NPFrame|PlayListPath|fallback|Quillon.ini",
                                     "GetINISetting|NPFrame|Empty||Quillon.ini"));
}

TEST_P(ComHostTest, LogLinesArriveInTheObject) {
    ComHost host;
    host.WriteLog("Quillon", "\u00d6l, \u65e5\u672c and a \"quote\"");
    EXPECT_THAT(Calls(), ElementsAre("WriteLog|Quillon|\u00d6l, \u65e5\u672c and a \"quote\""));
}

TEST_P(ComHostTest, PluginsAreWalkedByTheirNames) {
    Configure("[Server]\r\nPlugins=Other,Quillon\r\n");
    ComHost host;
    EXPECT_THAT(host.GetPlugins(), ElementsAre("Other", "Quillon"));
    EXPECT_THAT(Calls(), ElementsAre("GetPlugins", "_NewEnum", "Name", "Name"));
    Configure("[Server]\r\nPlugins=,\r\n");
    EXPECT_THAT(host.GetPlugins(), IsEmpty());
}

TEST_P(ComHostTest, TheFolderComesWithoutABackslash) {
    Configure("[Server]\r\nAppPath=C:\\Program Files\\Host\\\r\n");
    ComHost host;
    EXPECT_EQ(host.GetAppPath(), "C:\\Program Files\\Host");
}

TEST_P(ComHostTest, FailuresHaveTheDescriptionOfTheObject) {
    Configure("[Refuse]\r\nGetAppPath=The host is not ready\r\nWriteLog=\r\n");
    ComHost host;
    EXPECT_EQ(FailureOf([&] { host.GetAppPath(); }), "The host is not ready");
    EXPECT_EQ(FailureOf([&] { host.WriteLog("a", "b"); }),
              "The host's object failed in writelog (error 0x80004005)");
}

TEST_P(ComHostTest, TheObjectIsReleased) {
    {
        ComHost host;
    }
    for (int i = 0; i < 100 && Calls().empty(); ++i)
        Sleep(20);
    EXPECT_THAT(Calls(), ElementsAre("(released)"));
}

TEST_P(ComHostTest, LinesOfASettingsFileAreReadInTheHostsFolder) {
    folder_.MakeFile("Quillon.ini", "[NPFrame]\r\nLibraryRot=D:\\Music\r\n");
    Configure("[Server]\r\nAppPath=" + folder_.Path().string() + "\r\n");
    ComHost host;
    EXPECT_THAT(host.GetINILines("NPFrame", "Quillon.ini"), ElementsAre("LibraryRot=D:\\Music"));
    EXPECT_THAT(host.GetINILines("NPFrame", "None.ini"), IsEmpty());
}

TEST(ComHostWithoutObject, SaysThatItIsNotRegistered) {
    EXPECT_FALSE(ComHost::IsInstalled());
    EXPECT_EQ(FailureOf([] { ComHost host; }),
              "The object Homeseer.application is not registered on this computer");
}

TEST(ComHostWithoutObject, SaysThatItCannotBeStarted) {
    Registration registration;
    registration.RegisterServer(L"InprocServer32", L"C:\\none\\none.dll");
    EXPECT_TRUE(ComHost::IsInstalled());
    EXPECT_THAT(FailureOf([] { ComHost host; }),
                AllOf(HasSubstr("is registered, but cannot be started"), HasSubstr("0x")));
}

}  // namespace
}  // namespace quillon
