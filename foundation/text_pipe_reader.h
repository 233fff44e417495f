// SPDX-License-Identifier: MIT
#pragma once

#include "foundation/text_encoding.h"
#include "platform/pipe.h"

#include <QStringList>

#include <functional>
#include <memory>

namespace havrel {

/// Whether lines lose the white space at their ends.
enum class Trimming { No, Yes };

/// Collects the text that a program writes to a pipe, in the background, and hands it out as lines.
///
/// \code
/// TextPipeReader reader;
/// const auto program = platform::launch(path, {}, reader.pipe().writeEnd.get());
/// reader.closeWriteEnd(); // else the end of the file never comes
/// reader.startReading();
/// use(reader.lines());
/// \endcode
///
/// Threads: one thread at a time; `lines` also from several at once.
class TextPipeReader
{
public:
    /// Gives the next piece of what is read, waiting for it; empty at the end.
    using ChunkSource = std::function<QByteArray()>;

    TextPipeReader() = default;
    /// Reads from \p source instead of its pipe. The source is called on a thread of the global queue.
    explicit TextPipeReader(ChunkSource source);
    ~TextPipeReader();
    TextPipeReader(const TextPipeReader&) = delete;
    TextPipeReader& operator=(const TextPipeReader&) = delete;
    TextPipeReader(TextPipeReader&&) = delete;
    TextPipeReader& operator=(TextPipeReader&&) = delete;

    /// The pipe, made on first request; the write end is for the program's standard output. Its ends are not open if
    /// the process has no descriptors left, and then there is nothing to read.
    ///
    /// \selector pipe
    [[nodiscard]] const platform::Pipe& pipe();
    /// Closes this process's write end, which must be done once the program has been started.
    void closeWriteEnd();

    [[nodiscard]] TextEncoding encoding() const noexcept { return m_encoding; } ///< \selector encoding
    void setEncoding(TextEncoding encoding) noexcept { m_encoding = encoding; } ///< \selector setEncoding:
    /// Bytes to keep at most; 0 for all. A piece is kept whole if fewer bytes were kept before it; what comes later is
    /// read and dropped, so that the program is never held up.
    ///
    /// \selector limit
    [[nodiscard]] qsizetype limit() const noexcept { return m_limit; }
    void setLimit(qsizetype limit) noexcept { m_limit = limit; } ///< \selector setLimit:

    /// startReadingWithTrimming without trimming. \selector startReading
    void startReading();
    /// Begins reading to the end on the global queue, with the encoding and limit of this moment. Starting again begins
    /// with no lines and reads what is left.
    ///
    /// \selector startReadingWithTrimming:
    void startReadingWithTrimming(Trimming trimming);

    /// The lines read, in their order, without those that are empty or only white space. Waits, without a time limit,
    /// for the end of the reading that was started; none if none was. None also for bytes that are not text in the
    /// encoding. May be called on a thread of the global queue.
    ///
    /// \selector lines
    [[nodiscard]] QStringList lines() const;

private:
    struct Reading;
    [[nodiscard]] ChunkSource chunks();

    ChunkSource m_source;
    std::shared_ptr<platform::Pipe> m_pipe;
    std::shared_ptr<Reading> m_reading; // null until started
    TextEncoding m_encoding = TextEncoding::Default;
    qsizetype m_limit = 0;
};

} // namespace havrel
