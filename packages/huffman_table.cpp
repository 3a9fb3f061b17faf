#include "packages/huffman_table.h"

#include <algorithm>
#include <numeric>

namespace quillmar
{
namespace
{

using Counts = std::array<quint32, kLongestCodeWord + 1>;

Counts countLengths(std::span<const quint8> lengths)
{
    Counts counts{};
    for (const quint8 length : lengths)
        ++counts[length];
    counts[0] = 0;
    return counts;
}

bool isPrefixCode(const Counts &counts)
{
    quint32 used = 0; // of 2^15 code words of the longest length
    for (quint32 length = 1; length <= kLongestCodeWord; ++length)
        used += counts[length] << (kLongestCodeWord - length);
    constexpr quint32 all = 1U << kLongestCodeWord;
    const quint32 words = std::accumulate(counts.cbegin(), counts.cend(), 0U);
    return used == all || words == 0 || (words == 1 && counts[1] == 1);
}

/// Deflate sends code words from their first bit on, so tables are indexed by the reversed word.
quint32 reversed(quint32 word, quint32 length)
{
    word = (word & 0x5555) << 1 | (word >> 1 & 0x5555);
    word = (word & 0x3333) << 2 | (word >> 2 & 0x3333);
    word = (word & 0x0f0f) << 4 | (word >> 4 & 0x0f0f);
    word = (word & 0x00ff) << 8 | (word >> 8 & 0x00ff);
    return word >> (16 - length);
}

class Filler
{
public:
    Filler(std::span<quint32> table, quint32 width, quint32 longest)
        : table_(table), width_(width), subWidth_(longest > width ? longest - width : 0), used_(1U << width)
    {
        std::fill(table_.begin(), table_.begin() + used_, 0U);
    }

    bool add(quint32 word, quint32 length, quint32 symbol)
    {
        const quint32 index = reversed(word, length);
        if (length <= width_) {
            spread(table_.first(1U << width_), index, length, symbol);
            return true;
        }
        quint32 &link = table_[index & ((1U << width_) - 1)];
        if (link == 0 && !startSubtable(link))
            return false;
        const std::span<quint32> subtable = table_.subspan(huffman_entry::value(link), 1U << subWidth_);
        spread(subtable, index >> width_, length - width_, symbol);
        return true;
    }

private:
    static void spread(std::span<quint32> part, quint32 index, quint32 length, quint32 symbol)
    {
        for (std::size_t at = index; at < part.size(); at += std::size_t{1} << length)
            part[at] = symbol | length;
    }

    bool startSubtable(quint32 &link)
    {
        const quint32 size = 1U << subWidth_;
        if (used_ + size > table_.size())
            return false;
        link = huffman_entry::make(huffman_entry::kSubtable, used_, subWidth_);
        std::fill_n(table_.begin() + used_, size, 0U);
        used_ += size;
        return true;
    }

    std::span<quint32> table_;
    quint32 width_;
    quint32 subWidth_;
    quint32 used_;
};

} // namespace

bool fillHuffmanTable(std::span<quint32> table, quint32 width, std::span<const quint8> lengths,
                      std::span<const quint32> symbols)
{
    const Counts counts = countLengths(lengths);
    if (!isPrefixCode(counts))
        return false;
    Counts next{};
    quint32 longest = 0;
    for (quint32 length = 1; length <= kLongestCodeWord; ++length) {
        next[length] = (next[length - 1] + counts[length - 1]) << 1;
        if (counts[length] != 0)
            longest = length;
    }
    Filler filler(table, width, longest);
    for (std::size_t symbol = 0; symbol < lengths.size(); ++symbol) {
        const quint8 length = lengths[symbol];
        if (length != 0 && !filler.add(next[length]++, length, symbols[symbol]))
            return false;
    }
    return true;
}

} // namespace quillmar
