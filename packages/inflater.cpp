#include "packages/inflater.h"

#include "packages/huffman_table.h"

#include <QFile>
#include <QtEndian>

#include <algorithm>
#include <cstring>

namespace quillmar
{
namespace
{

namespace entry = huffman_entry;

constexpr qint64 kInputBytes = 128 * 1024;
constexpr qint64 kInputSlack =
    64; ///< zeros behind the last byte, so that no step asks whether bytes are left
constexpr qint64 kHistoryBytes = 32 * 1024;
constexpr qint64 kPieceBytes = 192 * 1024;
constexpr qint64 kOutputSlack =
    3 + 258 + 8; ///< what one step writes at most, and what a copy by words overshoots

constexpr std::size_t kLengthSymbols = 288;
constexpr std::size_t kDistanceSymbols = 32;

/// Literals, the end of the block and lengths. The last two symbols stand for nothing.
constexpr std::array<quint32, kLengthSymbols> makeLengthEntries()
{
    std::array<quint32, kLengthSymbols> entries{};
    for (quint32 byte = 0; byte < 256; ++byte)
        entries[byte] = entry::make(entry::kLiteral, byte, 0);
    entries[256] = entry::make(entry::kEnd, 0, 0);
    quint32 base = 3;
    for (quint32 symbol = 257; symbol < 285; ++symbol) {
        const quint32 extra = symbol < 265 ? 0 : (symbol - 261) / 4;
        entries[symbol] = entry::make(entry::kBase, base, extra);
        base += 1U << extra;
    }
    entries[285] = entry::make(entry::kBase, 258, 0);
    return entries;
}

constexpr std::array<quint32, kDistanceSymbols> makeDistanceEntries()
{
    std::array<quint32, kDistanceSymbols> entries{};
    quint32 base = 1;
    for (quint32 symbol = 0; symbol < 30; ++symbol) {
        const quint32 extra = symbol < 4 ? 0 : symbol / 2 - 1;
        entries[symbol] = entry::make(entry::kBase, base, extra);
        base += 1U << extra;
    }
    return entries;
}

constexpr std::array<quint32, 19> makeMetaEntries()
{
    std::array<quint32, 19> entries{};
    for (quint32 symbol = 0; symbol < entries.size(); ++symbol)
        entries[symbol] = entry::make(entry::kLiteral, symbol, 0);
    return entries;
}

constexpr auto kLengthEntries = makeLengthEntries();
constexpr auto kDistanceEntries = makeDistanceEntries();
constexpr auto kMetaEntries = makeMetaEntries();

/// Copies what stands `distance` bytes before `to`, which may overlap; writes up to seven bytes too many.
inline void copyMatch(char *to, quint32 length, quint32 distance)
{
    const char *from = to - distance;
    const char *const end = to + length;
    if (distance >= 8) {
        for (; to < end; to += 8, from += 8)
            std::memcpy(to, from, 8);
    } else if (distance == 1) {
        std::memset(to, *from, length);
    } else {
        for (; to < end; ++to, ++from)
            *to = *from;
    }
}

} // namespace

/// At least 56 bits from here on. The bits above them are those that the next call brings again.
inline void Inflater::Bits::refill()
{
    bits |= qFromLittleEndian<quint64>(next) << count;
    next += (63 - count) / 8;
    count |= 56;
}

inline quint32 Inflater::Bits::take(quint32 length)
{
    const auto taken = static_cast<quint32>(bits & ((quint64{1} << length) - 1));
    bits >>= length;
    count -= length;
    return taken;
}

inline quint32 Inflater::Bits::lookUp(const quint32 *table, quint32 width)
{
    quint32 found = table[bits & ((1U << width) - 1)];
    if ((found & entry::kSubtable) != 0) {
        take(width);
        found = table[entry::value(found) + (bits & ((1U << entry::extraBits(found)) - 1))];
    }
    take(entry::length(found));
    return found;
}

Inflater::Inflater()
    : input_(kInputBytes + kInputSlack, '\0'), window_(kHistoryBytes + kPieceBytes + kOutputSlack, '\0')
{
}

bool Inflater::inflate(QFile &file, qint64 offset, qint64 compressedSize, qint64 size, const Sink &sink)
{
    file_ = &file;
    unread_ = compressedSize;
    inputEnd_ = input_.constData();
    in_ = {.next = inputEnd_};
    out_ = pending_ = window_.data();
    room_ = size;
    sink_ = &sink;
    if (!file.seek(offset) || !inflateBlocks() || !flush())
        return false;
    return unread_ == 0 && in_.position() == inputEnd_ && room_ == 0;
}

bool Inflater::inflateBlocks()
{
    for (bool last = false; !last;) {
        if (!fillInput())
            return false;
        in_.refill();
        last = in_.take(1) != 0;
        bool sound = false;
        switch (in_.take(2)) {
        case 0:
            sound = inflateStored();
            break;
        case 1:
            sound = readFixedTables() && inflateCompressed();
            break;
        case 2:
            sound = readDynamicTables() && inflateCompressed();
            break;
        default:
            break;
        }
        if (!sound)
            return false;
    }
    return true;
}

bool Inflater::inflateStored()
{
    in_ = {.next = in_.position()};
    if (!fillInput() || inputEnd_ - in_.next < 4)
        return false;
    const auto length = qFromLittleEndian<quint16>(in_.next);
    const auto complement = qFromLittleEndian<quint16>(in_.next + 2);
    in_.next += 4;
    return (length ^ complement) == 0xffff && copyStored(length);
}

bool Inflater::copyStored(qint64 length)
{
    while (length > 0) {
        if (!fillInput() || !makeRoom() || in_.next == inputEnd_)
            return false;
        const qint64 free = window_.data() + window_.size() - kOutputSlack - out_;
        const qint64 count = std::min({length, free + 1, static_cast<qint64>(inputEnd_ - in_.next)});
        std::memcpy(out_, in_.next, static_cast<std::size_t>(count));
        out_ += count;
        in_.next += count;
        length -= count;
    }
    return true;
}

/// Made once for all fixed blocks in a row: such a block may be as short as ten bits.
bool Inflater::readFixedTables()
{
    if (tablesAreFixed_)
        return true;
    std::fill_n(lengths_.begin(), 144, quint8{8});
    std::fill_n(lengths_.begin() + 144, 112, quint8{9});
    std::fill_n(lengths_.begin() + 256, 24, quint8{7});
    std::fill_n(lengths_.begin() + 280, 8, quint8{8});
    std::fill_n(lengths_.begin() + 288, 32, quint8{5});
    const std::span lengths(lengths_);
    tablesAreFixed_ =
        fillHuffmanTable(lengthTable_, kLengthWidth, lengths.first(kLengthSymbols), kLengthEntries) &&
        fillHuffmanTable(distanceTable_, kDistanceWidth, lengths.subspan(kLengthSymbols), kDistanceEntries);
    return tablesAreFixed_;
}

bool Inflater::readDynamicTables()
{
    constexpr std::array<quint8, 19> order{16, 17, 18, 0, 8, 7, 9, 6, 10, 5, 11, 4, 12, 3, 13, 2, 14, 1, 15};
    const std::size_t lengthCount = in_.take(5) + 257;
    const std::size_t distanceCount = in_.take(5) + 1;
    const std::size_t metaCount = in_.take(4) + 4;
    if (lengthCount > 286 || distanceCount > 30)
        return false;
    tablesAreFixed_ = false;
    std::array<quint8, 19> meta{};
    for (std::size_t i = 0; i < metaCount; ++i) {
        in_.refill();
        meta[order[i]] = static_cast<quint8>(in_.take(3));
    }
    if (!fillHuffmanTable(metaTable_, kMetaWidth, meta, kMetaEntries) ||
        !readCodeLengths(lengthCount + distanceCount))
        return false;
    const std::span lengths(lengths_);
    return lengths_[256] != 0 &&
           fillHuffmanTable(lengthTable_, kLengthWidth, lengths.first(lengthCount), kLengthEntries) &&
           fillHuffmanTable(distanceTable_, kDistanceWidth, lengths.subspan(lengthCount, distanceCount),
                            kDistanceEntries);
}

bool Inflater::readCodeLengths(std::size_t count)
{
    for (std::size_t done = 0; done < count;) {
        if (!fillInput())
            return false;
        in_.refill();
        const quint32 found = in_.lookUp(metaTable_.data(), kMetaWidth);
        if (found == 0)
            return false;
        const quint32 symbol = entry::value(found);
        if (symbol < 16) {
            lengths_[done++] = static_cast<quint8>(symbol);
            continue;
        }
        if (symbol == 16 && done == 0)
            return false;
        const quint8 repeated = symbol == 16 ? lengths_[done - 1] : quint8{0};
        const std::size_t times = symbol == 16   ? in_.take(2) + 3
                                  : symbol == 17 ? in_.take(3) + 3
                                                 : in_.take(7) + 11;
        if (done + times > count)
            return false;
        std::fill_n(lengths_.begin() + static_cast<std::ptrdiff_t>(done), times, repeated);
        done += times;
    }
    return true;
}

bool Inflater::inflateCompressed()
{
    for (;;) {
        if (!fillInput() || !makeRoom())
            return false;
        const Block block = inflateSome();
        if (block != Block::Continues)
            return block == Block::Ended;
    }
}

/// Runs while a step finds its input and its room for certain: at most three literals, or two and a match.
Inflater::Block Inflater::inflateSome()
{
    const char *const inputStop = unread_ > 0 ? inputEnd_ - 2 * sizeof(quint64) : inputEnd_ + kInputSlack / 2;
    char *const begin = window_.data();
    const char *const outputStop = begin + window_.size() - kOutputSlack;
    Bits in = in_;
    char *out = out_;
    Block block = Block::Continues;
    while (in.next < inputStop && out <= outputStop) {
        in.refill();
        quint32 found = in.lookUp(lengthTable_.data(), kLengthWidth);
        for (int literals = 0; (found & entry::kLiteral) != 0 && literals < 2; ++literals) {
            *out++ = static_cast<char>(entry::value(found));
            found = in.lookUp(lengthTable_.data(), kLengthWidth);
        }
        if ((found & entry::kLiteral) != 0) {
            *out++ = static_cast<char>(entry::value(found));
            continue;
        }
        if ((found & entry::kBase) == 0) {
            block = (found & entry::kEnd) != 0 ? Block::Ended : Block::Damaged;
            break;
        }
        const quint32 length = entry::value(found) + in.take(entry::extraBits(found));
        in.refill();
        found = in.lookUp(distanceTable_.data(), kDistanceWidth);
        const quint32 distance = entry::value(found) + in.take(entry::extraBits(found));
        if ((found & entry::kBase) == 0 || distance > out - begin) {
            block = Block::Damaged;
            break;
        }
        copyMatch(out, length, distance);
        out += length;
    }
    in_ = in;
    out_ = out;
    return block;
}

/// Reads on when the input runs low. Behind the last byte come zeros; false once they were taken for input.
bool Inflater::fillInput()
{
    if (inputEnd_ - in_.next >= kInputSlack)
        return true;
    if (unread_ == 0)
        return in_.position() <= inputEnd_;
    char *const begin = input_.data();
    const auto kept = static_cast<std::size_t>(inputEnd_ - in_.next);
    std::memmove(begin, in_.next, kept);
    const qint64 wanted = std::min(unread_, kInputBytes - static_cast<qint64>(kept));
    if (file_->read(begin + kept, wanted) != wanted)
        return false;
    unread_ -= wanted;
    in_.next = begin;
    inputEnd_ = begin + kept + wanted;
    std::memset(begin + kept + wanted, 0, kInputSlack);
    return true;
}

/// Hands over what is there when the window is full, and keeps what matches may still reach back to.
bool Inflater::makeRoom()
{
    char *const begin = window_.data();
    if (out_ <= begin + window_.size() - kOutputSlack)
        return true;
    if (!flush())
        return false;
    std::memmove(begin, out_ - kHistoryBytes, kHistoryBytes);
    out_ = pending_ = begin + kHistoryBytes;
    return true;
}

bool Inflater::flush()
{
    const qint64 count = out_ - pending_;
    if (count > room_)
        return false;
    if (count > 0)
        (*sink_)(QByteArrayView(pending_, count));
    room_ -= count;
    pending_ = out_;
    return true;
}

} // namespace quillmar
