#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

#include <functional>
#include <memory>
#include <optional>

// How a scripted route's path is compared with a request's path (the query never counts).
enum class RouteMatch { Exact, Prefix };

// Scripted answers by method and path, shared by TestServer and FakeTransport.
// An exact route wins over a prefix route, a longer prefix over a shorter one, and a later
// registration of the same method, path and match replaces the earlier one. An empty method
// matches every method.
template <typename Request, typename Answer> class RouteTable {
public:
    using Handler = std::function<Answer(const Request&)>;

    void add(QByteArray method, QString path, RouteMatch match, Handler handler) {
        method = method.toUpper();
        m_routes.removeIf(
            [&](const Route& r) { return r.method == method && r.path == path && r.match == match; });
        m_routes.append(Route{std::move(method), std::move(path), match, std::move(handler)});
    }

    // Answers with `answers` in order; once they are used up, the last one repeats.
    void addSequence(QByteArray method, QString path, RouteMatch match, QList<Answer> answers) {
        Q_ASSERT(!answers.isEmpty());
        auto next = std::make_shared<qsizetype>(0);
        add(std::move(method), std::move(path), match, [answers = std::move(answers), next](const Request&) {
            const qsizetype index = std::min(*next, answers.size() - 1);
            ++*next;
            return answers.at(index);
        });
    }

    // The handler for a request, copied so that it may change the table while it runs.
    std::optional<Handler> find(const QByteArray& method, const QString& path) const {
        const Route* best = nullptr;
        for (const Route& route : m_routes) {
            if (!route.method.isEmpty() && route.method != method.toUpper()) {
                continue;
            }
            const bool hit =
                route.match == RouteMatch::Exact ? path == route.path : path.startsWith(route.path);
            if (hit && (!best || better(route, *best))) {
                best = &route;
            }
        }
        if (!best) {
            return std::nullopt;
        }
        return best->handler;
    }

    void clear() { m_routes.clear(); }

private:
    struct Route {
        QByteArray method;
        QString path;
        RouteMatch match;
        Handler handler;
    };

    static bool better(const Route& candidate, const Route& current) {
        if (candidate.match != current.match) {
            return candidate.match == RouteMatch::Exact;
        }
        if (candidate.path.size() != current.path.size()) {
            return candidate.path.size() > current.path.size();
        }
        // Same path: one route names the method, the other takes every method.
        return !candidate.method.isEmpty();
    }

    QList<Route> m_routes;
};

// Apple's error document with a single error, as the API sends it.
QByteArray appleErrorBody(int status, const QString& code, const QString& title, const QString& detail);

// What the API answers for a path it does not know.
QByteArray appleNotFoundBody();
