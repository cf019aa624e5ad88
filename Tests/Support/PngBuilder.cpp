#include "Tests/Support/PngBuilder.h"

#include <algorithm>
#include <cstddef>

namespace Orvik::Tests
{
namespace
{

void AppendUInt32(Bytes& bytes, std::uint32_t value)
{
    for (const int shift : {24, 16, 8, 0})
        bytes.push_back(static_cast<std::uint8_t>((value >> shift) & 0xFF));
}

std::uint32_t GetCrc32(const Bytes& bytes)
{
    std::uint32_t crc = 0xFFFFFFFF;
    for (const std::uint8_t byte : bytes)
    {
        crc ^= byte;
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 1) != 0 ? (crc >> 1) ^ 0xEDB88320 : crc >> 1;
    }
    return ~crc;
}

std::uint32_t GetAdler32(const Bytes& bytes)
{
    std::uint32_t low = 1;
    std::uint32_t high = 0;
    for (const std::uint8_t byte : bytes)
    {
        low = (low + byte) % 65521;
        high = (high + low) % 65521;
    }
    return (high << 16) | low;
}

// A zlib stream whose blocks are stored as they are.
Bytes Store(const Bytes& raw)
{
    constexpr std::size_t blockBytes = 0xFFFF;
    Bytes stream = {0x78, 0x01};
    std::size_t offset = 0;
    do
    {
        const std::size_t count = std::min(raw.size() - offset, blockBytes);
        const bool isLast = offset + count == raw.size();
        const auto low = static_cast<std::uint8_t>(count & 0xFF);
        const auto high = static_cast<std::uint8_t>(count >> 8);
        stream.push_back(static_cast<std::uint8_t>(isLast ? 1 : 0));
        for (const std::uint8_t byte : {low, high})
            stream.push_back(byte);
        for (const std::uint8_t byte : {low, high})
            stream.push_back(static_cast<std::uint8_t>(~byte));
        const auto begin = raw.begin() + static_cast<std::ptrdiff_t>(offset);
        stream.insert(stream.end(), begin, begin + static_cast<std::ptrdiff_t>(count));
        offset += count;
    } while (offset < raw.size());
    AppendUInt32(stream, GetAdler32(raw));
    return stream;
}

} // namespace

Bytes MakePngSignature()
{
    return {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
}

Bytes MakePngChunk(std::string_view type, const Bytes& data)
{
    const Bytes checked = Concatenate({Bytes(type.begin(), type.end()), data});
    Bytes chunk;
    AppendUInt32(chunk, static_cast<std::uint32_t>(data.size()));
    chunk.insert(chunk.end(), checked.begin(), checked.end());
    AppendUInt32(chunk, GetCrc32(checked));
    return chunk;
}

Bytes MakePngHeaderChunk(const PngHeader& header)
{
    Bytes data;
    AppendUInt32(data, header.width);
    AppendUInt32(data, header.height);
    const auto interlace = static_cast<std::uint8_t>(header.isInterlaced ? 1 : 0);
    return MakePngChunk("IHDR", Concatenate({data, {header.bitDepth, header.colourType, 0, 0, interlace}}));
}

Bytes MakePngDataChunk(const Bytes& rows)
{
    return MakePngChunk("IDAT", Store(rows));
}

Bytes MakePng(const PngHeader& header, const Bytes& rows, const Bytes& chunks)
{
    return Concatenate(
        {MakePngSignature(), MakePngHeaderChunk(header), chunks, MakePngDataChunk(rows), MakePngChunk("IEND", {})});
}

} // namespace Orvik::Tests
