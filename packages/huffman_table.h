#pragma once

#include <QtTypes>

#include <array>
#include <span>

namespace quillmar
{

/// What one code word of a deflate stream stands for, packed into 32 bits.
///
/// Bits 0-3: length of the code word; 4-7: number of extra bits that follow it; 8-11: kind; 12-31: value.
/// Zero is a code word that the stream may not use.
namespace huffman_entry
{
constexpr quint32 kLiteral = 0x100;  ///< value: a byte or, in other alphabets, a symbol
constexpr quint32 kBase = 0x200;     ///< value: to be added to the extra bits
constexpr quint32 kEnd = 0x400;      ///< end of the block
constexpr quint32 kSubtable = 0x800; ///< value: index of a second table; extra bits: its width

constexpr quint32 make(quint32 kind, quint32 value, quint32 extraBits)
{
    return value << 12 | kind | extraBits << 4;
}
constexpr quint32 length(quint32 entry)
{
    return entry & 15;
}
constexpr quint32 extraBits(quint32 entry)
{
    return entry >> 4 & 15;
}
constexpr quint32 value(quint32 entry)
{
    return entry >> 12;
}
} // namespace huffman_entry

constexpr quint32 kLongestCodeWord = 15;

/// Fills `table` for code words of up to `kLongestCodeWord` bits, looked up by the next `width` bits of the
/// stream and, for longer words, by the bits after them in a second table further back.
///
/// `lengths` gives the length of each symbol's code word, zero for none, and `symbols` its entry without a
/// length. False when the lengths make no complete prefix code; a single code word of one bit is complete
/// enough, as is none.
bool fillHuffmanTable(std::span<quint32> table, quint32 width, std::span<const quint8> lengths,
                      std::span<const quint32> symbols);

} // namespace quillmar
