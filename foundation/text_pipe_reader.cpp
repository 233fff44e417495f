// SPDX-License-Identifier: MIT
#include "foundation/text_pipe_reader.h"

#include "foundation/condition_lock.h"
#include "foundation/dispatch.h"

#include <QScopeGuard>
#include <QThread>
#include <QThreadPool>

#include <algorithm>
#include <iterator>
#include <optional>
#include <utility>

namespace havrel {
namespace {

constexpr ConditionLock::Condition kReading = 0;
constexpr ConditionLock::Condition kLinesReady = 1;
constexpr qsizetype kInitialCapacity = 1024; // bytes

/// Gives the place of a pool thread to another while it waits, so that a full pool still runs what is waited for.
class ReleasedPoolThread
{
public:
    ReleasedPoolThread()
        : m_released(globalQueuePool().contains(QThread::currentThread()))
    {
        if (m_released)
            globalQueuePool().releaseThread();
    }
    ~ReleasedPoolThread()
    {
        if (m_released)
            globalQueuePool().reserveThread();
    }
    ReleasedPoolThread(const ReleasedPoolThread&) = delete;
    ReleasedPoolThread& operator=(const ReleasedPoolThread&) = delete;
    ReleasedPoolThread(ReleasedPoolThread&&) = delete;
    ReleasedPoolThread& operator=(ReleasedPoolThread&&) = delete;

private:
    bool m_released;
};

/// \source the newline set: U+000A to U+000D, U+0085, U+2028, U+2029
bool isNewline(QChar character)
{
    const char16_t unit = character.unicode();
    return (unit >= u'\n' && unit <= u'\r') || unit == u'\u0085' || unit == u'\u2028' || unit == u'\u2029';
}

bool isWhiteSpace(QChar character)
{
    return character == u'\t' || character.category() == QChar::Separator_Space;
}

QStringView trimmed(QStringView line)
{
    const auto first = std::find_if_not(line.begin(), line.end(), isWhiteSpace);
    const auto last = std::find_if_not(line.rbegin(), std::make_reverse_iterator(first), isWhiteSpace).base();
    return {first, last};
}

QStringList linesOf(QStringView text, Trimming trimming)
{
    QStringList lines;
    while (!text.isEmpty()) {
        const auto end = std::find_if(text.begin(), text.end(), isNewline);
        const QStringView line(text.begin(), end);
        const QStringView shorter = trimmed(line);
        if (!shorter.isEmpty())
            lines << (trimming == Trimming::Yes ? shorter : line).toString();
        text = end == text.end() ? QStringView() : QStringView(end + 1, text.end());
    }
    return lines;
}

} // namespace

struct TextPipeReader::Reading
{
    void run();
    [[nodiscard]] QByteArray bytes() const;

    ChunkSource chunks;
    TextEncoding encoding = TextEncoding::Default;
    qsizetype limit = 0;
    Trimming trimming = Trimming::No;
    ConditionLock lock{kReading};
    QStringList output; // written before kLinesReady, read after it
};

QByteArray TextPipeReader::Reading::bytes() const
{
    QByteArray kept;
    kept.reserve(kInitialCapacity);
    for (QByteArray chunk = chunks(); !chunk.isEmpty(); chunk = chunks())
        if (limit == 0 || kept.size() < limit)
            kept += chunk;
    return kept;
}

void TextPipeReader::Reading::run()
{
    // Whoever waits for the lines must go on even if the source throws.
    const auto atTheEnd = qScopeGuard([this] { lock.transitionToCondition(kLinesReady); });
    if (const std::optional<QString> text = decodedText(bytes(), encoding))
        output = linesOf(*text, trimming);
}

TextPipeReader::TextPipeReader(ChunkSource source)
    : m_source(std::move(source))
{
}

TextPipeReader::~TextPipeReader()
{
    closeWriteEnd(); // or a reading that goes on would wait for ourselves
}

const platform::Pipe& TextPipeReader::pipe()
{
    if (!m_pipe)
        m_pipe = std::make_shared<platform::Pipe>(platform::makePipe());
    return *m_pipe;
}

void TextPipeReader::closeWriteEnd()
{
    if (m_pipe)
        m_pipe->writeEnd.reset();
}

TextPipeReader::ChunkSource TextPipeReader::chunks()
{
    if (m_source)
        return m_source;
    (void)pipe();
    return [pipe = m_pipe] { return platform::readAvailable(pipe->readEnd.get()); };
}

void TextPipeReader::startReading()
{
    startReadingWithTrimming(Trimming::No);
}

void TextPipeReader::startReadingWithTrimming(Trimming trimming)
{
    m_reading = std::make_shared<Reading>();
    m_reading->chunks = chunks();
    m_reading->encoding = m_encoding;
    m_reading->limit = m_limit;
    m_reading->trimming = trimming;
    onGlobalQueue([reading = m_reading] { reading->run(); });
}

QStringList TextPipeReader::lines() const
{
    if (!m_reading)
        return {};
    const ReleasedPoolThread released;
    m_reading->lock.sleepUntilCondition(kLinesReady);
    return m_reading->output;
}

} // namespace havrel
