#include "tests/dialog/filesizelimit.h"

#include <csignal>
#include <sys/resource.h>

struct FileSizeLimit::Former
{
    rlimit limit{};
    void (*handler)(int) = nullptr;
};

FileSizeLimit::FileSizeLimit(qint64 bytes)
    : m_Former(std::make_unique<Former>())
{
    getrlimit(RLIMIT_FSIZE, &m_Former->limit);
    // Else the first byte too many would end the process. What it starts has to see to that itself, which it would not
    // have to if the signal were ignored.
    m_Former->handler = std::signal(SIGXFSZ, [](int) {});
    rlimit limit = m_Former->limit;
    limit.rlim_cur = static_cast<rlim_t>(bytes);
    setrlimit(RLIMIT_FSIZE, &limit);
}

FileSizeLimit::~FileSizeLimit()
{
    setrlimit(RLIMIT_FSIZE, &m_Former->limit);
    std::signal(SIGXFSZ, m_Former->handler);
}
