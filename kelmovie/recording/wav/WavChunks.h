#pragma once

#include <QByteArray>
#include <QtGlobal>

class QIODevice;

namespace kel
{

/// Walks the chunks of a WAV file, one after the other. Stops after a fixed number of chunks, because a hostile file
/// can hold millions of empty ones.
///
///     WavChunks chunks(file, WavChunks::Padding::None);
///     while (chunks.next()) {
///         if (chunks.isFormat())
///             ...
class WavChunks
{
public:
    static constexpr int kMaxChunks = 10'000;

    /// Whether a chunk of odd size is followed by a padding byte: RIFF demands it, but not every writer adds one.
    enum class Padding { None, ToEvenSize };

    static constexpr int kHeaderSize = 8;
    static constexpr int kFirst = 12; ///< behind the RIFF header

    /// The first chunk begins at byte `first`. `file` outlives this object.
    WavChunks(QIODevice &file, Padding padding, qint64 first = kFirst);

    /// Moves to the next chunk and the file to its content. False after the last chunk and after kMaxChunks.
    bool next();

    bool isFormat() const { return m_header.startsWith("fmt "); }
    bool isData() const { return m_header.startsWith("data"); }
    /// Whether the name is one that a chunk can have: four printable characters.
    bool hasName() const;

    /// Where the content begins in the file.
    qint64 offset() const { return m_offset; }

    /// Bytes of content as stated, which may be more than the file holds.
    quint32 size() const;

private:
    QIODevice &m_file;
    const Padding m_padding;
    QByteArray m_header;
    qint64 m_offset = 0;
    qint64 m_next;
    int m_count = 0;
};

} // namespace kel
