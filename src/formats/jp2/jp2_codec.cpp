#include "formats/jp2/jp2_codec.h"

#include <algorithm>

namespace rastrel {

namespace {

constexpr OPJ_SIZE_T kBufferBytes = OPJ_SIZE_T{256} << 10;
constexpr auto kNoBytes = static_cast<OPJ_SIZE_T>(-1);

ByteSource& SourceOf(void* user) {
    return *static_cast<ByteSource*>(user);
}

Jp2Bytes& BytesOf(void* user) {
    return *static_cast<Jp2Bytes*>(user);
}

OPJ_SIZE_T ReadBytes(void* out, OPJ_SIZE_T count, void* user) {
    const std::size_t read = SourceOf(user).Read({static_cast<std::uint8_t*>(out), count});
    return read > 0 ? read : kNoBytes;
}

OPJ_OFF_T SkipInput(OPJ_OFF_T count, void* user) {
    ByteSource& source = SourceOf(user);
    if (count < 0) return -1;
    const auto skipped =
        std::min(static_cast<std::uint64_t>(count), source.BytesFrom(source.Position()));
    source.Seek(source.Position() + skipped);
    return static_cast<OPJ_OFF_T>(skipped);
}

OPJ_BOOL SeekInput(OPJ_OFF_T position, void* user) {
    if (position < 0) return OPJ_FALSE;
    SourceOf(user).Seek(static_cast<std::uint64_t>(position));
    return OPJ_TRUE;
}

/// Memory up to a position, zeros where nothing has been written; false when there is not as much.
bool Reach(Jp2Bytes& out, std::size_t end) noexcept {
    try {
        if (out.bytes.size() < end) out.bytes.resize(end);
        return true;
    } catch (...) {
        return false;
    }
}

OPJ_SIZE_T WriteBytes(void* bytes, OPJ_SIZE_T count, void* user) {
    Jp2Bytes& out = BytesOf(user);
    if (!Reach(out, out.position + count)) return kNoBytes;
    std::copy_n(static_cast<const std::uint8_t*>(bytes), count,
                out.bytes.begin() + static_cast<std::ptrdiff_t>(out.position));
    out.position += count;
    return count;
}

OPJ_OFF_T SkipOutput(OPJ_OFF_T count, void* user) {
    Jp2Bytes& out = BytesOf(user);
    if (count < 0 || !Reach(out, out.position + static_cast<std::size_t>(count))) return -1;
    out.position += static_cast<std::size_t>(count);
    return count;
}

OPJ_BOOL SeekOutput(OPJ_OFF_T position, void* user) {
    if (position < 0 || !Reach(BytesOf(user), static_cast<std::size_t>(position))) return OPJ_FALSE;
    BytesOf(user).position = static_cast<std::size_t>(position);
    return OPJ_TRUE;
}

}  // namespace

Jp2Stream OpenJp2Input(ByteSource& source) {
    Jp2Stream stream(opj_stream_create(kBufferBytes, OPJ_TRUE));
    if (!stream) return nullptr;
    opj_stream_set_user_data(stream.get(), &source, nullptr);
    opj_stream_set_user_data_length(stream.get(), source.Size());
    opj_stream_set_read_function(stream.get(), ReadBytes);
    opj_stream_set_skip_function(stream.get(), SkipInput);
    opj_stream_set_seek_function(stream.get(), SeekInput);
    return stream;
}

Jp2Stream OpenJp2Output(Jp2Bytes& bytes) {
    Jp2Stream stream(opj_stream_create(kBufferBytes, OPJ_FALSE));
    if (!stream) return nullptr;
    opj_stream_set_user_data(stream.get(), &bytes, nullptr);
    opj_stream_set_write_function(stream.get(), WriteBytes);
    opj_stream_set_skip_function(stream.get(), SkipOutput);
    opj_stream_set_seek_function(stream.get(), SeekOutput);
    return stream;
}

}  // namespace rastrel
