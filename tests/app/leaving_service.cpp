// SPDX-License-Identifier: MIT
// A service that ends as soon as nothing happened for the time of one round of its event loop: it does little else than
// leave the bus. Writes the text of each request as a line to the file that it is given.
#include "app/service_face.h"
#include "app/service_requests.h"
#include "platform/bus_connection.h"

#include <QCoreApplication>
#include <QTimer>

#include <fcntl.h>
#include <unistd.h>

namespace havrel {
namespace {

class WritingRequests final : public ServiceRequests
{
public:
    explicit WritingRequests(const char* file)
        : m_file(::open(file, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0600))
    {
    }
    ~WritingRequests() override { ::close(m_file); }
    WritingRequests(const WritingRequests&) = delete;
    WritingRequests& operator=(const WritingRequests&) = delete;
    WritingRequests(WritingRequests&&) = delete;
    WritingRequests& operator=(WritingRequests&&) = delete;

    void revealInArchive(const Pasteboard& pasteboard) override
    {
        busy = true;
        const QByteArray line = pasteboard.value(pasteboard::kPlainText) + '\n';
        if (::write(m_file, line.constData(), static_cast<size_t>(line.size())) != line.size())
            ::_exit(2);
    }
    void captureToArchive(const Pasteboard&) override {}
    void setCapturePreferences(const Pasteboard&) override {}

    bool busy = false;

private:
    int m_file;
};

int serve(const char* file)
{
    WritingRequests requests(file);
    platform::BusConnection bus;
    if (bus.open() != 0)
        return 1;
    ServiceFace face(requests, bus);
    if (face.appear() != 0)
        return 1;
    QTimer idle;
    QObject::connect(&idle, &QTimer::timeout, [&] {
        if (!std::exchange(requests.busy, false) && face.leave())
            QCoreApplication::quit();
    });
    idle.start(1);
    return QCoreApplication::exec();
}

} // namespace
} // namespace havrel

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    return argc == 2 ? havrel::serve(argv[1]) : 2;
}
