// SPDX-License-Identifier: MIT
#include "platform/input_records.h"

#include <cerrno>
#include <cstdlib>

namespace havrel::platform {

void InputRecords::Close::operator()(std::FILE* file) const noexcept
{
    std::fclose(file);
}

void InputRecords::Free::operator()(char* buffer) const noexcept
{
    std::free(buffer);
}

InputRecords::InputRecords(const QByteArray& path, char end)
    : m_end(end)
{
    if (path == "-") {
        m_file = stdin;
        return;
    }
    m_opened.reset(path.contains('\0') ? nullptr : std::fopen(path.constData(), "re"));
    m_file = m_opened.get();
    if (m_file == nullptr)
        m_error = path.contains('\0') ? EINVAL : errno;
}

std::optional<QByteArray> InputRecords::next()
{
    if (m_file == nullptr || m_error != 0)
        return std::nullopt;
    char* buffer = m_buffer.release();
    errno = 0;
    const ssize_t length = ::getdelim(&buffer, &m_capacity, static_cast<unsigned char>(m_end), m_file);
    if (length < 0)
        m_error = std::feof(m_file) != 0 ? 0 : errno;
    m_buffer.reset(buffer);
    if (length < 0)
        return std::nullopt;
    const bool ended = length > 0 && buffer[length - 1] == m_end;
    return QByteArray(buffer, ended ? length - 1 : length);
}

} // namespace havrel::platform
