#include "app/SectionCatalog.h"

#include "api/WriteConfirmationViewModel.h"
#include "metadata/MetadataViewModel.h"
#include "release/VersionsListViewModel.h"
#include "reports/AnalyticsViewModel.h"
#include "testflight/BetaAppInfoViewModel.h"
#include "testflight/BetaBuildDetailViewModel.h"
#include "testflight/TestFlightViewModel.h"
#include "workspace/OverviewViewModel.h"
#include "workspace/SectionRegistry.h"

#include <QPointer>

using namespace Qt::StringLiterals;

namespace {

// A model that builds a PendingWrite shows it on the sheet of its own window; whatever the
// sheet decides, the model's request is done with.
template <typename Model> void presentWritesOf(Model* model, WriteConfirmationViewModel& presenter) {
    QPointer<WriteConfirmationViewModel> sheet(&presenter);
    QObject::connect(model, &Model::pendingWriteChanged, model, [model, sheet] {
        if (sheet && model->pendingWrite()) {
            sheet->present(*model->pendingWrite());
        }
    });
    QObject::connect(&presenter, &WriteConfirmationViewModel::cancelled, model, &Model::cancelPendingWrite);
    QObject::connect(&presenter, &WriteConfirmationViewModel::confirmed, model, &Model::cancelPendingWrite);
}

template <typename Model> void startLoading(QObject* model) {
    static_cast<Model*>(model)->startLoad(false);
}

} // namespace

SectionRegistry makeSectionRegistry() {
    SectionRegistry registry;
    registry.add({SidebarSection::Overview,
                  QUrl(u"qrc:/qt/qml/Varnis/Workspace/OverviewPage.qml"_s),
                  [](const SectionContext& context) -> QObject* {
                      return new OverviewViewModel(context.state, context.app, context.parent);
                  },
                  {}});
    registry.add({SidebarSection::AppStoreOptimization,
                  QUrl(u"qrc:/qt/qml/Varnis/Metadata/MetadataPage.qml"_s),
                  [](const SectionContext& context) -> QObject* {
                      auto* model = new MetadataViewModel(context.state, context.app, context.parent);
                      presentWritesOf(model, context.presenter);
                      return model;
                  },
                  startLoading<MetadataViewModel>});
    registry.add({SidebarSection::Releases, QUrl(u"qrc:/qt/qml/Varnis/Release/VersionsPage.qml"_s),
                  [](const SectionContext& context) -> QObject* {
                      return new VersionsListViewModel(context.state, context.app, context.parent);
                  },
                  startLoading<VersionsListViewModel>});
    registry.add({SidebarSection::TestFlight, QUrl(u"qrc:/qt/qml/Varnis/TestFlight/TestFlightPage.qml"_s),
                  [](const SectionContext& context) -> QObject* {
                      auto* model = new TestFlightViewModel(context.state, context.app, context.parent);
                      presentWritesOf(model, context.presenter);
                      presentWritesOf(model->appInfo(), context.presenter);
                      presentWritesOf(model->buildDetail(), context.presenter);
                      return model;
                  },
                  startLoading<TestFlightViewModel>});
    registry.add({SidebarSection::Analytics, QUrl(u"qrc:/qt/qml/Varnis/Reports/AnalyticsPage.qml"_s),
                  [](const SectionContext& context) -> QObject* {
                      return new AnalyticsViewModel(context.state, context.app, context.parent);
                  },
                  startLoading<AnalyticsViewModel>});
    return registry;
}
