// Folders of chunk files through the host API: what is replaced, what is kept, and what is reported.

#include "support/HostSession.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>

using namespace KesTest;

namespace {

namespace fs = std::filesystem;

using Files = std::map<std::string, std::string>;

class ChunkFolder : public HostSession {
protected:
    ChunkFolder() : mFacade(EXAMPLE_DATABASE) {
        mFacade.OwningChip(ChipOf("ostrell_520_2_3"));
        EXPECT_TRUE(mFacade.LoadText(EXAMPLE_FOLDER + "/headunit-production.ktf", false)) << LastError();
    }
    std::string Loaded(const std::string& folder, bool result) {
        host::FrameworkFacade facade(EXAMPLE_DATABASE);
        facade.OwningChip(ChipOf("ostrell_520_2_3"));
        EXPECT_EQ(facade.LoadBinary(folder, false), result) << LastError();
        const host::HostString difference = mFacade.FirstDifference(facade);
        return difference.IsNull() ? "same" : difference.ToNarrow();
    }
    host::FrameworkFacade mFacade;
};

TEST_F(ChunkFolder, KeepsFilesThatAreNotItsChunks) {
    const std::string folder = mFolder / "chunks";
    ASSERT_TRUE(mFacade.SaveBinary(folder)) << LastError();
    const Files saved = FilesOf(folder);
    EXPECT_EQ(Loaded(folder, true), "same");

    const TempFolder elsewhere;
    const std::string& some = saved.begin()->second;
    fs::copy_file(folder + "/" + saved.begin()->first, folder + "/nfc-mtp-0009.kcf");
    std::ofstream(folder + "/notes.kcf") << "no chunk file";
    std::ofstream(folder + "/notes.txt") << some;
    fs::create_directory(folder + "/sub.kcf");
    fs::create_symlink(elsewhere.Write("linked.kcf", "far away"), folder + "/link.kcf");
    ASSERT_TRUE(mFacade.SaveBinary(folder)) << LastError();
    Files after = FilesOf(folder);
    EXPECT_FALSE(after.contains("nfc-mtp-0009.kcf")) << "left by an earlier save";
    EXPECT_EQ(after.at("notes.kcf"), "no chunk file");
    EXPECT_TRUE(fs::exists(elsewhere / "linked.kcf"));
    EXPECT_TRUE(fs::is_directory(folder + "/sub.kcf"));
    fs::remove(folder + "/notes.kcf");
    fs::remove(folder + "/link.kcf");
    EXPECT_EQ(Loaded(folder, true), "same");

    std::ofstream(folder + "/bad.kcf") << some.substr(0, some.size() - 1);
    std::ofstream(folder + "/empty.kcf");
    std::string last;
    for (const auto& entry : fs::directory_iterator(folder)) {
        if (entry.path().extension() == ".kcf" && entry.is_regular_file() && entry.file_size() != 0)
            last = entry.path().filename();
    }
    EXPECT_EQ(Loaded(folder, last != "bad.kcf"), "same")
        << "the good files are taken, the result is of the last";
    EXPECT_EQ(LastError().substr(2), "error converting data from or to a binary [the input seems corrupt]: " +
                                         folder + "/bad.kcf: has " + std::to_string(some.size() - 1) +
                                         " bytes and says that they are " + std::to_string(some.size()));
}

TEST_F(ChunkFolder, ReportsWhyItCannotBeWritten) {
    EXPECT_FALSE(mFacade.SaveBinary(mFolder.Write("file", "x")));
    EXPECT_EQ(LastError(), "0 unable to open the file: " + (mFolder / "file") + ": Not a directory");
    EXPECT_FALSE(mFacade.SaveBinary(mFolder / "no/such/folder"));
    EXPECT_EQ(LastError(),
              "0 unable to open the file: " + (mFolder / "no/such/folder") + ": No such file or directory");
    EXPECT_EQ(KesTest::ReadFile(mFolder / "file"), "x");
}

}  // namespace
