#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <array>
#include <functional>

class QFile;

namespace quillmar
{

/// Inflates raw deflate streams out of a file, piece by piece.
///
/// Takes less than half a mebibyte whatever the stream holds, and never reads the whole of it at once: memory
/// stays flat for the largest entry, and a stream that would grow beyond what was declared is given up at
/// once. One object serves any number of streams, one after another. Any one thread at a time.
class Inflater
{
public:
    /// Receives the next plain bytes; they are gone after the call.
    using Sink = std::function<void(QByteArrayView)>;

    Inflater();
    Q_DISABLE_COPY_MOVE(Inflater)

    /// Inflates the `compressedSize` bytes of `file` from `offset` on. True when they are exactly one stream,
    /// which holds exactly `size` bytes. `sink` never gets more than `size` bytes, but may have got some
    /// before the answer is false.
    bool inflate(QFile &file, qint64 offset, qint64 compressedSize, qint64 size, const Sink &sink);

private:
    enum class Block { Continues, Ended, Damaged };

    /// The stream, bit by bit. A value, so that the innermost loop can keep it in registers.
    struct Bits {
        const char *next = nullptr; ///< first byte that is not in `bits`
        quint64 bits = 0;
        quint32 count = 0;

        const char *position() const { return next - count / 8; }
        void refill();
        quint32 take(quint32 length);
        quint32 lookUp(const quint32 *table, quint32 width);
    };

    bool inflateBlocks();
    bool inflateStored();
    bool copyStored(qint64 length);
    bool readFixedTables();
    bool readDynamicTables();
    bool readCodeLengths(std::size_t count);
    bool inflateCompressed();
    Block inflateSome();

    bool fillInput();
    bool makeRoom();
    bool flush();

    static constexpr quint32 kLengthWidth = 11;
    static constexpr quint32 kDistanceWidth = 8;
    static constexpr quint32 kMetaWidth = 7;

    std::array<quint32, 2048 + 144 * 16> lengthTable_{};  ///< room for 144 second tables of 4 bits
    std::array<quint32, 256 + 16 * 128> distanceTable_{}; ///< room for 16 second tables of 7 bits
    std::array<quint32, 128> metaTable_{};
    std::array<quint8, 288 + 32> lengths_{};

    bool tablesAreFixed_ = false;

    QByteArray input_;
    Bits in_;
    const char *inputEnd_ = nullptr; ///< end of what was read; zeros follow
    QFile *file_ = nullptr;
    qint64 unread_ = 0; ///< compressed bytes still in the file

    QByteArray window_; ///< what was written last, for matches, and after it what the sink has not got yet
    char *out_ = nullptr;
    char *pending_ = nullptr; ///< first byte that the sink has not got
    qint64 room_ = 0;         ///< bytes that the sink may still get
    const Sink *sink_ = nullptr;
};

} // namespace quillmar
