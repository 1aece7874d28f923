// Folders of chunk files: which files are read, in which order, and which result a load returns.

#include "support/Recording.h"

#include <sys/stat.h>

using namespace VEMO::Kes::ConfigurationTools;
using KesTest::TempFolder;

namespace {

constexpr const char* BEFORE = "local_name=\"car\" max_acl_links=5 | ";
constexpr const char* NOTHING = "0 Folder does not contain readable *.kcf files. No config data found.";

class BinaryFiles : public KesTest::RecordedSession {
protected:
    static std::string Reading(const std::string& path, const std::string& content) {
        return "read chip=ostrell_520_2_3 filetype=1 insertmode=overwrite inputfile=" + path + " '" +
               content + "'\n";
    }
    static std::function<bool(FrameworkFacade&)> Load(const std::string& folder, bool merge) {
        return [=](FrameworkFacade& facade) { return facade.LoadBinary(folder, merge); };
    }
    static std::function<bool(FrameworkFacade&)> Save(const std::string& folder) {
        return [=](FrameworkFacade& facade) { return facade.SaveBinary(folder); };
    }
};

TEST_F(BinaryFiles, OtherFilesAreIgnored) {
    const TempFolder folder;
    folder.Write("a.txt", "x");
    folder.Write("b.kcf.old", "x");
    folder.Write("c.kcf", "");
    std::filesystem::create_directories(folder / "sub.kcf");
    std::ofstream(folder / "sub.kcf/d.kcf") << "x";
    ASSERT_EQ(mkfifo((folder / "pipe.kcf").c_str(), 0600), 0);
    std::filesystem::create_symlink("gone", folder / "gone.kcf");
    Check({Load(folder.Path(), false), false, NOTHING, "| ", ""});
    Check({Load(folder.Path(), true), false, NOTHING, BEFORE, ""});

    for (const char* name : {".kcf", "b.kcf", "z.kcf"}) {
        const std::string path = folder.Write(name, "good");
        Check({Load(folder.Path(), true), true, "none", "local_name=\"car\" max_acl_links=% 0x04 % | ",
               Reading(path, "good")});
        std::filesystem::remove(path);
    }
}

TEST_F(BinaryFiles, TheLastFileReadDeterminesTheResult) {
    const TempFolder folder;
    for (const char* name : {"a.kcf", "b.kcf"}) folder.Write(name, "x");
    std::vector<std::string> paths;
    for (const auto& entry : std::filesystem::directory_iterator(folder.Path()))
        paths.push_back(entry.path());
    const auto load = [&](const char* first, const char* second) {
        std::ofstream(paths[0]) << first;
        std::ofstream(paths[1]) << second;
        return Load(folder.Path(), false);
    };
    const auto calls = [&](const char* first, const char* second) {
        return Reading(paths[0], first) + Reading(paths[1], second);
    };
    Check({load("longer", "one"), true, "none", "max_acl_links=% 0x03 % | ", calls("longer", "one")});
    Check({load("error fail", "2"), true, "0 the device says no", "max_acl_links=% 0x01 % | ",
           calls("error fail", "2")});
    Check({load("1", "fail"), false, "none", "max_acl_links=% 0x01 % | ", calls("1", "fail")});
    Check({load("fail", ""), false, "none", "| ", Reading(paths[0], "fail")});
}

TEST_F(BinaryFiles, AFolderThatCannotBeListedThrowsAndOneWithoutANameIsRefused) {
    for (const std::string& folder : {mFolder / "absent", mFolder.Write("file.kcf", "x")}) {
        Prepare();
        EXPECT_THROW(mFacade->LoadBinary(folder, true), std::filesystem::filesystem_error);
        EXPECT_EQ(Keys(), BEFORE);
        EXPECT_THROW(mFacade->LoadBinary(folder, false), std::filesystem::filesystem_error);
        EXPECT_EQ(Keys(), "| ");
    }
    Check({Load("", false), false, "0 no folder name is given", "| ", ""});
    Check({Load("", true), false, "0 no folder name is given", BEFORE, ""});
}

TEST_F(BinaryFiles, ASavePassesTheFolderToTheWriter) {
    const std::string saved =
        "provider\nbegin chip=ostrell_520_2_3 filetype=1 mode=dir\nkey 4098\nkey 4101\nend\ndelete\n";
    const Row rows[] = {
        {Save("out"), true, "none", BEFORE, "writer Packint 'out' null\n" + saved},
        {Save("error"), false, "0 the device says no", BEFORE, "writer Packint 'error' null\n" + saved},
        {Save("null"), false, "1 Packint readerwriter plugin not found.", BEFORE,
         "writer Packint 'null' null\n"},
        {Save(""), false, "0 no folder name is given", BEFORE, "writer Packint '' null\n"},
    };
    for (const Row& row : rows) Check(row);
}

}  // namespace
