// A large download into a file through QtHttpTransport: throughput, how much the process grows
// while the body streams through it, and the same address fetched by curl for comparison, once
// into /dev/null (the network side alone) and once into a file next to ours (the same work). The
// server is a plain blocking loop on its own thread that sends one small buffer over and over,
// so that neither its memory nor its speed stands in the way of the figures.
#include "BenchSupport.h"
#include "platform/Clock.h"
#include "platform/QtHttpTransport.h"
#include "support/AwaitTask.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QFileInfo>
#include <QProcess>
#include <QTemporaryDir>
#include <QUrl>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <time.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <thread>
#include <vector>

using namespace Qt::StringLiterals;
using Bench::median;
using Bench::resetPeak;
using Bench::statusKB;

namespace {

constexpr qint64 bodyBytes = 200LL * 1024 * 1024;

// Answers a GET of /small with a few bytes and every other with `bodyBytes` of a repeated
// pattern, and closes.
class BulkServer {
public:
    BulkServer() : m_chunk(1024 * 1024, 0) {
        for (std::size_t i = 0; i < m_chunk.size(); ++i) {
            m_chunk[i] = char(i * 31 + 7);
        }
        m_listener = ::socket(AF_INET, SOCK_STREAM, 0);
        const int on = 1;
        ::setsockopt(m_listener, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = 0;
        if (::bind(m_listener, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
            ::listen(m_listener, 8) != 0) {
            qFatal("bench server cannot listen");
        }
        socklen_t length = sizeof address;
        ::getsockname(m_listener, reinterpret_cast<sockaddr*>(&address), &length);
        m_port = ntohs(address.sin_port);
        m_thread = std::thread([this] { serve(); });
    }

    ~BulkServer() {
        m_stopping = true;
        ::shutdown(m_listener, SHUT_RDWR);
        ::close(m_listener);
        m_thread.join();
    }

    QUrl url(const QString& path = u"/report.gz"_s) const {
        return QUrl(u"http://127.0.0.1:%1%2"_s.arg(m_port).arg(path));
    }

    // CPU time the server has spent answering, so that it can be taken out of the process's own.
    qint64 cpuNanos() const { return m_cpuNanos; }

private:
    void serve() {
        while (!m_stopping) {
            const int client = ::accept(m_listener, nullptr, nullptr);
            if (client < 0) {
                return;
            }
            timespec start{};
            ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &start);
            answer(client);
            ::close(client);
            timespec end{};
            ::clock_gettime(CLOCK_THREAD_CPUTIME_ID, &end);
            m_cpuNanos += (end.tv_sec - start.tv_sec) * 1000000000LL + (end.tv_nsec - start.tv_nsec);
        }
    }

    void answer(int client) {
        std::string request;
        char buffer[4096];
        while (request.find("\r\n\r\n") == std::string::npos) {
            const ssize_t got = ::recv(client, buffer, sizeof buffer, 0);
            if (got <= 0) {
                return;
            }
            request.append(buffer, std::size_t(got));
        }
        const qint64 size = request.rfind("GET /small ", 0) == 0 ? 16 : bodyBytes;
        const std::string head =
            "HTTP/1.1 200 OK\r\nContent-Type: application/a-gzip\r\nContent-Length: " + std::to_string(size) +
            "\r\nConnection: close\r\n\r\n";
        if (!sendAll(client, head.data(), head.size())) {
            return;
        }
        for (qint64 left = size; left > 0;) {
            const std::size_t n = std::size_t(std::min<qint64>(left, qint64(m_chunk.size())));
            if (!sendAll(client, m_chunk.data(), n)) {
                return;
            }
            left -= qint64(n);
        }
    }

    static bool sendAll(int socket, const char* data, std::size_t size) {
        while (size > 0) {
            const ssize_t sent = ::send(socket, data, size, MSG_NOSIGNAL);
            if (sent <= 0) {
                return false;
            }
            data += sent;
            size -= std::size_t(sent);
        }
        return true;
    }

    std::vector<char> m_chunk;
    int m_listener = -1;
    quint16 m_port = 0;
    std::atomic<bool> m_stopping{false};
    std::atomic<qint64> m_cpuNanos{0};
    std::thread m_thread;
};

// CPU time used so far, user and system, by this process or by its finished children.
qint64 cpuNanos(int who) {
    rusage usage{};
    ::getrusage(who, &usage);
    return (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1000000000LL +
           (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) * 1000LL;
}

double megabytesPerSecond(qint64 bytes, double seconds) {
    return double(bytes) / (1024.0 * 1024.0) / seconds;
}

// Throughput of curl on the same address, from curl's own clock (so the process start is not
// counted), or -1 without curl. `cpuMs` gets the CPU time curl used.
double curlThroughput(const QUrl& url, const QString& target, double& cpuMs) {
    const qint64 cpuBefore = cpuNanos(RUSAGE_CHILDREN);
    QProcess curl;
    curl.start(u"curl"_s,
               {u"-s"_s, u"-o"_s, target, u"-w"_s, u"%{size_download} %{time_total}"_s, url.toString()});
    if (!curl.waitForFinished(120000) || curl.exitCode() != 0) {
        return -1;
    }
    cpuMs = double(cpuNanos(RUSAGE_CHILDREN) - cpuBefore) / 1e6;
    const QList<QByteArray> figures = curl.readAllStandardOutput().trimmed().split(' ');
    if (figures.size() != 2 || figures[0].toLongLong() != bodyBytes) {
        return -1;
    }
    return megabytesPerSecond(bodyBytes, figures[1].toDouble());
}

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    const int rounds = argc > 1 ? std::max(1, QByteArray(argv[1]).toInt()) : 3;

    BulkServer server;
    QTemporaryDir dir;
    auto transport = std::make_shared<QtHttpTransport>(std::make_shared<SystemClock>());
    const QString path = dir.filePath(u"report.gz"_s);

    // Qt's network stack is set up before the figures, with a small download of its own.
    {
        HttpRequest warmUp;
        warmUp.url = server.url(u"/small"_s);
        warmUp.saveTo = DownloadTarget{path, {}};
        VarnisTest::awaitTask(transport->send(warmUp));
        QFile::remove(path);
    }
    std::vector<double> ours;
    std::vector<double> theirs;
    std::vector<double> theirsToFile;
    std::vector<double> oursCpu;
    std::vector<double> theirsCpu;
    std::vector<double> theirsToFileCpu;
    double worstGrowthMB = 0;
    qint64 progressCalls = 0;
    for (int round = 0; round < rounds; ++round) {
        HttpRequest request;
        request.url = server.url();
        request.accept = "application/a-gzip";
        request.saveTo = DownloadTarget{path, [&progressCalls](qint64, qint64) {
                                            ++progressCalls;
                                        }};
        // Each round's peak against what the process held when it began: a peak that only a
        // series of downloads reaches shows as well as one of a single download.
        resetPeak();
        const qint64 rssBefore = statusKB("VmRSS");
        const qint64 cpuBefore = cpuNanos(RUSAGE_SELF) - server.cpuNanos();
        QElapsedTimer timer;
        timer.start();
        const HttpResponse response =
            VarnisTest::awaitTask(transport->send(request), std::chrono::minutes(5));
        const double seconds = double(timer.nsecsElapsed()) / 1e9;
        oursCpu.push_back(double(cpuNanos(RUSAGE_SELF) - server.cpuNanos() - cpuBefore) / 1e6);
        const double growthMB = double(statusKB("VmHWM") - rssBefore) / 1024.0;
        worstGrowthMB = std::max(worstGrowthMB, growthMB);
        if (response.status != 200 || response.savedBytes != bodyBytes ||
            QFileInfo(path).size() != bodyBytes) {
            std::fprintf(stderr, "download failed: status %d\n", response.status);
            return 1;
        }
        QFile::remove(path);
        ours.push_back(megabytesPerSecond(bodyBytes, seconds));
        double cpu = 0;
        theirs.push_back(curlThroughput(server.url(), u"/dev/null"_s, cpu));
        theirsCpu.push_back(cpu);
        theirsToFile.push_back(curlThroughput(server.url(), path, cpu));
        theirsToFileCpu.push_back(cpu);
        QFile::remove(path);
        std::printf(
            "round %d: Varnis %.0f MB/s (CPU %.0f ms, peak growth %.1f MB), curl to /dev/null %.0f MB/s "
            "(CPU %.0f ms), curl to a file %.0f MB/s (CPU %.0f ms)\n",
            round + 1, ours.back(), oursCpu.back(), growthMB, theirs.back(), theirsCpu.back(),
            theirsToFile.back(), theirsToFileCpu.back());
    }

    const double oursMedian = median(ours);
    const double theirsMedian = median(theirs);
    const double theirsToFileMedian = median(theirsToFile);
    std::printf("download of %lld MB into a file, %d rounds, medians:\n", bodyBytes / (1024 * 1024), rounds);
    std::printf("  Varnis (QtHttpTransport)   %8.0f MB/s  CPU %6.0f ms  (%lld progress calls per round)\n",
                oursMedian, median(oursCpu), progressCalls / rounds);
    std::printf("  curl -s -o /dev/null       %8.0f MB/s  CPU %6.0f ms\n", theirsMedian, median(theirsCpu));
    std::printf("  curl -s -o FILE            %8.0f MB/s  CPU %6.0f ms\n", theirsToFileMedian,
                median(theirsToFileCpu));
    std::printf("  ratio Varnis/curl          %8.2f    (target >= 0.80)\n",
                theirsMedian > 0 ? oursMedian / theirsMedian : 0.0);
    std::printf("  ratio Varnis/curl to file  %8.2f\n",
                theirsToFileMedian > 0 ? oursMedian / theirsToFileMedian : 0.0);
    std::printf("  worst peak RSS growth      %8.1f MB  (target <= 32; one round's peak over its start)\n",
                worstGrowthMB);
    return 0;
}
