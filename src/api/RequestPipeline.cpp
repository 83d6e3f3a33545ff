#include "api/RequestPipeline.h"

#include "wire/VelmoraAPIError.h"

#include <QLoggingCategory>

Q_LOGGING_CATEGORY(lcPipeline, "com.tolsenmark.Velmora.AppStoreConnectClient", QtInfoMsg)

QCoro::Task<HttpResponse> PipelineNext::operator()(PipelineCall call) const {
    return m_pipeline->sendAt(m_index, std::move(call));
}

RequestPipeline::RequestPipeline(std::vector<std::unique_ptr<PipelineStage>> stages,
                                 std::shared_ptr<HttpTransport> transport)
    : m_stages(std::move(stages)), m_transport(std::move(transport)) {}

RequestPipeline::~RequestPipeline() = default;

QCoro::Task<HttpResponse> RequestPipeline::send(PipelineCall call) const {
    return sendAt(0, std::move(call));
}

QCoro::Task<HttpResponse> RequestPipeline::sendAt(std::size_t index, PipelineCall call) const {
    if (index < m_stages.size()) {
        return m_stages[index]->process(std::move(call), PipelineNext(this, index + 1));
    }
    return transmit(std::move(call));
}

QCoro::Task<HttpResponse> RequestPipeline::transmit(PipelineCall call) const {
    HttpResponse response = co_await m_transport->send(call.http);
    if (!response.isHttp) {
        throw VelmoraAPIError::unknown(-1);
    }
    qCDebug(lcPipeline, "%s %s -> %ld", call.http.method.constData(), qPrintable(call.request.path),
            long(response.status));
    const bool success = response.status >= 200 && response.status <= 299;
    if (call.http.saveTo && success && !response.savedBytes) {
        saveBody(*call.http.saveTo, response);
    }
    co_return response;
}
