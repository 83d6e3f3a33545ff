#pragma once

#include "platform/HttpTransport.h"
#include "wire/APIRequest.h"

#include <QCoro/QCoroTask>

#include <memory>
#include <vector>

// One request on its way through the stages: what the service asked for (for the audit entry,
// the log and the priority) and the HTTP request made from it.
struct PipelineCall {
    APIRequest request;
    HttpRequest http;
    // 1 for the first try; the retry stage counts up.
    int attempt = 1;
};

class RequestPipeline;

// The rest of the pipeline below a stage.
class PipelineNext {
public:
    QCoro::Task<HttpResponse> operator()(PipelineCall call) const;

private:
    friend class RequestPipeline;
    PipelineNext(const RequestPipeline* pipeline, std::size_t index) : m_pipeline(pipeline), m_index(index) {}
    const RequestPipeline* m_pipeline;
    std::size_t m_index;
};

// One concern of sending a request: it may act before the rest of the pipeline, after it, or
// instead of it (a retry calls it again).
class PipelineStage {
public:
    virtual ~PipelineStage() = default;
    virtual QCoro::Task<HttpResponse> process(PipelineCall call, PipelineNext next) = 0;
};

// Stages in a fixed order above the transport. A stage sees a response, a TransportError
// (which the outermost stage turns into the German network error) or an error of a stage below.
class RequestPipeline {
public:
    RequestPipeline(std::vector<std::unique_ptr<PipelineStage>> stages,
                    std::shared_ptr<HttpTransport> transport);
    ~RequestPipeline();

    QCoro::Task<HttpResponse> send(PipelineCall call) const;

private:
    friend class PipelineNext;
    QCoro::Task<HttpResponse> sendAt(std::size_t index, PipelineCall call) const;
    QCoro::Task<HttpResponse> transmit(PipelineCall call) const;

    std::vector<std::unique_ptr<PipelineStage>> m_stages;
    std::shared_ptr<HttpTransport> m_transport;
};
