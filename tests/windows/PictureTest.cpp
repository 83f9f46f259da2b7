// Pictures printed by the DLL, beside what the library makes of them on this system.

#include "tests/windows/OnWindows.h"

#include <atomic>
#include <fcntl.h>
#include <fstream>
#include <random>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

namespace hosts {
namespace {

using namespace endtoend;

struct Shape {
    uint32_t width, height;
    uint16_t depth;
};

std::ostream &operator<<(std::ostream &out, const Shape &shape) {
    return out << shape.width << "x" << shape.height << "x" << shape.depth;
}

void Append(Bytes &bytes, uint64_t number, int size) {
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<uint8_t>(number >> 8 * i));
}

// A bitmap file of noise with a fixed seed.
Bytes Noise(const Shape &shape) {
    const uint32_t stride = (shape.width * shape.depth + 31) / 32 * 4;
    const uint32_t start = shape.depth == 1 ? 62 : 54;
    const uint32_t size = stride * shape.height;
    Bytes file{'B', 'M'};
    for (const uint32_t field : {start + size, 0u, start, 40u, shape.width, shape.height})
        Append(file, field, 4);
    Append(file, 1, 2);
    Append(file, shape.depth, 2);
    for (const uint32_t field : {0u, size, 0u, 0u, 0u, 0u})
        Append(file, field, 4);
    std::minstd_rand random(1);
    while (file.size() < start + size)
        file.push_back(static_cast<uint8_t>(random() >> 8));
    return file;
}

void WriteNoise(const std::string &name, const Shape &shape) {
    const Bytes bytes = Noise(shape);
    std::ofstream(name, std::ios::binary)
        .write(reinterpret_cast<const char *>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

class Picture : public OnWindows, public testing::WithParamInterface<Shape> {
  protected:
    Picture() : windowsPeer(Medium::tcp), ownPeer(Medium::tcp) { WriteNoise(File(), GetParam()); }
    ~Picture() override { ClosePrinter(); }

    std::string File() const { return folder.Path() / "noise.bmp"; }

    // What this system's library sends.
    Bytes Printed() {
        EXPECT_EQ(ownPeer.Connect(Form::plain), 1);
        EXPECT_GT(BmpSaveSpool(ToUtf16(File()).c_str(), 3, 4), 0);
        CompressedBmpSaveSpool(ToUtf16(File()).c_str());
        const auto length = static_cast<size_t>(EnterSCRMode() + 1);
        EXPECT_EQ(PrintSpool(1), 1);
        const Bytes sent = ownPeer.Await(length);
        EXPECT_EQ(sent.size(), length);
        return sent;
    }

    RawPeer windowsPeer;
    RawPeer ownPeer;
};

TEST_P(Picture, PrintsTheSameDotsOnBothSystems) {
    CallingHost host = StartHost();
    host.Connect(Wlan(windowsPeer.TcpPort()));
    const std::string name = Quoted("Z:" + File());
    host.Ask("BmpSaveSpool(" + name + ", 3, 4)");
    host.Ask("CompressedBmpSaveSpool(" + name + ")");
    host.Ask("EnterSCRMode()");
    EXPECT_EQ(host.Call("PrintSpool(1)"), 1);
    const Bytes own = Printed();
    EXPECT_TRUE(windowsPeer.Await(own.size()) == own);
}

INSTANTIATE_TEST_SUITE_P(, Picture,
                         testing::Values(Shape{8, 1, 1}, Shape{383, 49, 1}, Shape{1, 1, 24},
                                         Shape{384, 100, 24}, Shape{101, 24, 24}),
                         testing::PrintToStringParamName());

// A drive without a letter, which has the folder's files.
class Volume {
  public:
    explicit Volume(const std::filesystem::path &folder) {
        std::filesystem::remove(link);
        std::filesystem::create_symlink(folder, link);
    }
    ~Volume() { std::filesystem::remove(link); }

    std::string Name() const { return R"(\\?\Volume{01234567-89AB-cdef-0123-456789abcdef})"; }

  private:
    const std::filesystem::path link =
        WindowsFolder() / "wine/prefix/dosdevices/volume{01234567-89ab-cdef-0123-456789abcdef}";
};

class PictureOnAVolume : public OnWindows {};

TEST_F(PictureOnAVolume, IsAFileButTheVolumeItselfIsNot) {
    RawPeer peer(Medium::tcp);
    const Volume volume(folder.Path());
    WriteNoise(folder.Path() / "noise.bmp", {8, 1, 1});
    CallingHost host = StartHost();
    host.Connect(Wlan(peer.TcpPort()));
    EXPECT_GT(host.Call("BmpSaveSpool(" + Quoted(volume.Name() + R"(\noise.bmp)") + ", 3, 4)"), 0);
    EXPECT_EQ(host.Call("BmpSaveSpool(" + Quoted(volume.Name()) + ", 3, 4)"), -1);
}

// A pipe that a thread wants to write into, which waits until somebody opens it to read.
class WatchedPipe {
  public:
    explicit WatchedPipe(std::string path) : name(std::move(path)) {
        if (mkfifo(name.c_str(), 0600) != 0)
            throw std::runtime_error("no pipe " + name);
        writer = std::thread([this] {
            isWaiting = true;
            close(open(name.c_str(), O_WRONLY));
            isOpened = true;
        });
        Eventually([this] { return isWaiting.load(); });
    }
    ~WatchedPipe() {
        const int reader = open(name.c_str(), O_RDONLY | O_NONBLOCK);
        writer.join();
        close(reader);
    }

    std::string Name() const { return name; }
    bool IsOpened() const { return isOpened; }

  private:
    const std::string name;
    std::atomic<bool> isWaiting = false;
    std::atomic<bool> isOpened = false;
    std::thread writer;
};

class PictureName : public OnWindows, public testing::WithParamInterface<std::string> {
  protected:
    PictureName() : pipe(folder.Path() / "pipe"), peer(Medium::tcp) { PortName(pipe.Name()); }

    // With the pipe's own name in place of PIPE.
    std::string Name() const { return GetParam() == "PIPE" ? "Z:" + pipe.Name() : GetParam(); }

    WatchedPipe pipe;
    RawPeer peer;
};

TEST_P(PictureName, OfAPortOrPipeOpensNothing) {
    CallingHost host = StartHost();
    host.Connect(Wlan(peer.TcpPort()));
    EXPECT_EQ(host.Ask("BmpSaveSpool(" + Quoted(Name()) + ", 3, 4)"),
              host.Ask("BmpSaveSpool(\"none.bmp\", 3, 4)"));
    host.Ask("CompressedBmpSaveSpool(" + Quoted(Name()) + ")");
    EXPECT_FALSE(pipe.IsOpened());
}

INSTANTIATE_TEST_SUITE_P(, PictureName,
                         testing::Values("PIPE", "COM1", "com1:", R"(\\.\COM1)", R"(\\?\COM1)", "//./COM1"),
                         [](const auto &test) { return "Number" + std::to_string(test.index + 1); });

} // namespace
} // namespace hosts
