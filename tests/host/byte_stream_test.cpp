// Real files: what is written arrives, one file is known by all its names, and a file is replaced whole or not at all.
#include "host/byte_stream.h"

#include <filesystem>
#include <fstream>

#include "host/file_replacement.h"
#include "tests/host/error_of.h"
#include "tests/support/test.h"

namespace clarivex {
namespace {

struct Files : testing::Test {
    Files() { std::filesystem::create_directories(folder); }
    ~Files() override { std::filesystem::remove_all(folder); }

    std::string Path(const char* name) const { return folder + "/" + name; }
    void Put(const char* name, const std::string& text) const { std::ofstream(Path(name), std::ios::binary) << text; }
    std::string Text(const char* name) const {
        std::ifstream file(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

    const std::string folder =
        testing::TempDir() + "clarivex_" + testing::UnitTest::GetInstance()->current_test_info()->name();
};

std::span<const uint8_t> BytesOf(const std::string& text) {
    return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

TEST_F(Files, PiecesOfAllSizesArriveInTheirOrder) {
    std::string whole;
    FileSink sink(Path("pieces"));
    for (const size_t size : {3, 65536, 1, 65533, 2, 1, 65537, 200000, 0, 5}) {
        const std::string piece(size, static_cast<char>('\n' + size % 100));  // line ends stay as they are
        sink.Write(BytesOf(piece));
        whole += piece;
    }
    sink.Close();
    EXPECT_TRUE(Text("pieces") == whole);
    std::string read;
    FileSource source(Path("pieces"));
    for (const size_t size : {1, 65536, 7, 0, 65537, 2, 131072, 65535, 300000}) {  // the last is more than is left
        std::vector<uint8_t> piece(size);
        const size_t count = source.Read(piece);
        read.append(piece.begin(), piece.begin() + static_cast<ptrdiff_t>(count));
    }
    EXPECT_TRUE(read == whole);
}

TEST_F(Files, AreKnownByAnyName) {
    Put("one", "same");
    Put("two", "same");
    std::filesystem::create_hard_link(Path("one"), Path("link"));
    for (const char* name : {"one", "./one", "link", "two", "missing", "."})
        EXPECT_EQ(SameFile(Path("one"), Path(name)), std::string("two missing .").find(name) == std::string::npos)
            << name;
    EXPECT_FALSE(SameFile(folder, folder)) << "a folder is no file";
}

TEST_F(Files, AreReplacedWholeOrNotAtAll) {
    const auto write = [](const char* text) { return [=](ByteSink& sink) { sink.Write(BytesOf(text)); }; };
    Put("file", "old and longer");
    FileReplacement(Path("file")).Fill(write("half"));
    EXPECT_EQ(Text("file"), "old and longer");
    FileReplacement replacement(Path("file"));
    ExpectError("file.part is in its way", [&] { FileReplacement second(Path("file")); });
    replacement.Fill(write("new"));
    replacement.TakePlace();
    EXPECT_EQ(Text("file"), "new");
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1) << "nothing stays beside it";
    ExpectError("it is a folder", [&] { FileReplacement none(folder); });
}

}  // namespace
}  // namespace clarivex
