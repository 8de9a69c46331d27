// A byte string as a program: calls on a few handles through the exported interface, with whatever
// arguments come, among them files that earlier calls have written.

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "rastrel.h"

namespace {

constexpr int kHandles = 4;
constexpr int kMostSide = 200;

/// Takes the program's bytes one after the other; zeros when there are none left.
class Program {
  public:
    Program(const std::uint8_t* data, std::size_t size) : at_(data), end_(data + size) {}
    [[nodiscard]] bool Ended() const { return at_ == end_; }
    int Byte() { return at_ == end_ ? 0 : *at_++; }
    /// Mostly a plausible number, sometimes one from the ends of the range.
    int Number() {
        const int byte = Byte();
        switch (byte) {
            case 255:
                return INT32_MAX;
            case 254:
                return INT32_MIN;
            case 253:
                return -1;
            case 252:
                return -Byte();
            default:
                return byte;
        }
    }
    int Handle() { return Byte() % (kHandles + 1) - (Byte() == 77 ? 1 : 0); }
    int Depth() {
        constexpr std::array<int, 8> kDepths = {1, 4, 8, 24, 32, 16, 0, -1};
        return kDepths[static_cast<std::size_t>(Byte()) % kDepths.size()];
    }

  private:
    const std::uint8_t* at_;
    const std::uint8_t* end_;
};

/// Where the program's files are: a new folder, removed at the end.
class FileFolder {
  public:
    FileFolder()
        : name_((std::filesystem::temp_directory_path() / "rastrel-fuzz-XXXXXX").string()) {
        if (mkdtemp(name_.data()) == nullptr) std::abort();
    }
    FileFolder(const FileFolder&) = delete;
    FileFolder& operator=(const FileFolder&) = delete;
    ~FileFolder() {
        std::error_code ignored;
        std::filesystem::remove_all(name_, ignored);
    }
    [[nodiscard]] const std::string& Name() const { return name_; }

  private:
    std::string name_;
};

std::string FileName(int choice) {
    constexpr std::array<const char*, 9> kNames = {"/a.bmp", "/b.qvi",         "/c.bmp",
                                                   "/d.qvi", "/missing/e.bmp", "/f.xyz",
                                                   "/g.bil", "/h.bip",         "/g.bsq"};
    static const FileFolder folder;
    return folder.Name() + kNames[static_cast<std::size_t>(choice) % kNames.size()];
}

/// Pixels are only asked for in amounts that the buffer holds.
void GetPixels(Program& program, int handle) {
    static std::array<std::uint8_t, std::size_t{kMostSide} * kMostSide * 4> buffer;
    const int depth = program.Depth();
    const int x = program.Number();
    const int y = program.Number();
    const int width = program.Byte() % kMostSide;
    const int height = program.Byte() % kMostSide;
    Rastrel_GetImageByte(handle, buffer.data(), depth, x, y, width, height);
}

void CreateFromSamples(Program& program, int handle) {
    static std::array<float, 64> floats;
    for (float& sample : floats)
        sample = static_cast<float>(program.Number());
    const auto* bytes = reinterpret_cast<const std::uint8_t*>(floats.data());
    switch (program.Byte() % 6) {
        case 0:
            Rastrel_CreateFromFloat(handle, floats.data(), 8, 8);
            break;
        case 1:
            Rastrel_CreateFromInt(handle, reinterpret_cast<const std::int32_t*>(bytes), 16, 4);
            break;
        case 2:
            Rastrel_CreateFromShort(handle, reinterpret_cast<const std::int16_t*>(bytes), 4, 32);
            break;
        case 3:
            Rastrel_CreateFromByte(handle, bytes, 32, 8);
            break;
        case 4:
            Rastrel_CreateFromByte24(handle, bytes, 5, 17);
            break;
        default:
            Rastrel_CreateFromByte32(handle, bytes, 9, 7);
            break;
    }
}

void SetPalette(Program& program, int handle) {
    std::array<std::uint8_t, 256> channel;
    for (std::uint8_t& entry : channel)
        entry = static_cast<std::uint8_t>(program.Byte());
    Rastrel_SetPalette(handle, program.Number(), channel.data(), channel.data(), channel.data());
}

void Create(Program& program, int handle) {
    // Sizes from the ends of the range would mostly make large blocks of zeros.
    const int width = program.Number() % 300;
    const int height = program.Number() % 300;
    Rastrel_Create(handle, width, height, program.Depth());
}

/// A crop's or partial read's rectangle.
struct Rectangle {
    int x, y, width, height;
};

Rectangle TakeRectangle(Program& program) {
    const int x = program.Number();
    const int y = program.Number();
    const int width = program.Number();
    return {x, y, width, program.Number()};
}

void SetPixel(Program& program, int handle) {
    const int x = program.Number();
    const int y = program.Number();
    const int value = program.Byte();
    Rastrel_SetIndex(handle, x, y, value);
    Rastrel_SetRGB(handle, x, y, value, value / 2, 7);
    std::uint8_t red = 0;
    Rastrel_GetRGB(handle, x, y, &red, nullptr, nullptr);
    Rastrel_GetIndex(handle, x, y);
}

void ReadFile(Program& program, int handle) {
    const std::string name = program.Byte() == 1 ? "" : FileName(program.Byte());
    const int type = program.Byte() % 10 - 1;
    switch (program.Byte() % 3) {
        case 0:
            Rastrel_Read(handle, name.c_str(), type);
            break;
        case 1: {
            const Rectangle r = TakeRectangle(program);
            Rastrel_ReadPartialEx(handle, name.c_str(), type, r.x, r.y, r.width, r.height,
                                  program.Number());
            break;
        }
        default:
            Rastrel_Read3(handle, name.c_str(), FileName(program.Byte()).c_str(), name.c_str(),
                          type);
            break;
    }
}

void To8Bits(int handle) {
    if (Rastrel_GetDepth(handle) > 8 && Rastrel_Conv24To8(handle) != 1) std::abort();
    Rastrel_Conv1To8(handle);
}

void To1Bit(int handle) {
    const std::uint8_t levels[] = {0, 200, 255};
    if (Rastrel_GetDepth(handle) > 8 &&
        Rastrel_Conv24To8_Precalcolata(handle, 3, levels, levels, levels) != 1)
        std::abort();
    Rastrel_Conv8To1(handle);
}

void Step(Program& program) {
    const int operation = program.Byte() % 20;
    const int handle = program.Handle();
    switch (operation) {
        case 0:
            Rastrel_New();
            break;
        case 1:
            Rastrel_Delete(handle);
            break;
        case 2:
        case 3:
            Create(program, handle);
            break;
        case 4:
            CreateFromSamples(program, handle);
            break;
        case 5:
            SetPalette(program, handle);
            break;
        case 6:
            Rastrel_SetGrayPalette(handle);
            break;
        case 7:
            Rastrel_CopyPalette(handle, program.Handle());
            break;
        case 8:
            SetPixel(program, handle);
            break;
        case 9:
            Rastrel_Fill(handle, program.Byte(), program.Byte(), program.Byte());
            break;
        case 10:
            Rastrel_Conv8To24(handle);
            break;
        case 11:
            To8Bits(handle);
            break;
        case 12:
            To1Bit(handle);
            break;
        case 13: {
            const Rectangle r = TakeRectangle(program);
            Rastrel_ExtractPortion(handle, r.x, r.y, r.width, r.height);
            break;
        }
        case 14:
            Rastrel_Copy(handle, program.Handle());
            break;
        case 15: {
            const int first = program.Handle();
            const int second = program.Handle();
            Rastrel_CreateFrom3Bands(handle, first, second, program.Handle());
            break;
        }
        case 16:
            GetPixels(program, handle);
            break;
        case 17:
            ReadFile(program, handle);
            break;
        default:
            Rastrel_Save(handle, FileName(program.Byte()).c_str(), program.Byte() % 10 - 1);
            break;
    }
}

/// What every handle must be like after any call.
void CheckHandle(int handle) {
    const int width = Rastrel_GetWidth(handle);
    const int height = Rastrel_GetHeight(handle);
    const std::uint8_t* rows = Rastrel_GetRawImage(handle);
    if ((rows != nullptr) != (width > 0) || (width > 0) != (height > 0)) std::abort();
    if (rows == nullptr) return;
    const std::int64_t row_bits = std::int64_t{width} * Rastrel_GetDepth(handle);
    if (Rastrel_GetEffWidth(handle) != (row_bits + 31) / 32 * 4) std::abort();
    // The last byte of the last row is there to be read.
    const volatile std::uint8_t* last =
        rows + std::int64_t{Rastrel_GetEffWidth(handle)} * height - 1;
    static_cast<void>(*last);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    for (int i = 0; i < kHandles; ++i)
        Rastrel_New();
    Program program(data, size);
    for (int steps = 0; steps < 64 && !program.Ended(); ++steps) {
        Step(program);
        for (int handle = 0; handle < kHandles; ++handle)
            CheckHandle(handle);
    }
    for (int handle = 0; handle < 100; ++handle)
        Rastrel_Delete(handle);
    return 0;
}
