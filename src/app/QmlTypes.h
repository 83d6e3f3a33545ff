#pragma once

// The presentation models as QML knows them: typed, so that screens bind to declared properties
// and the QML tools can check every binding. They live in the core library, which knows nothing
// of QML; these declarations lend them their QML names. None is made in QML.

#include "api/AccountSettingsViewModel.h"
#include "api/AddAccountViewModel.h"
#include "api/ChangeLogViewModel.h"
#include "api/RateLimitStatusViewModel.h"
#include "api/RowListModel.h"
#include "api/TaskListModel.h"
#include "api/WriteConfirmationViewModel.h"
#include "metadata/MetadataViewModel.h"
#include "release/VersionsListViewModel.h"
#include "reports/AnalyticsViewModel.h"
#include "reports/PerformanceViewModel.h"
#include "reports/SalesViewModel.h"
#include "testflight/BetaAppInfoViewModel.h"
#include "testflight/BetaBuildDetailViewModel.h"
#include "testflight/BetaFeedbackViewModel.h"
#include "testflight/BulkActionsViewModel.h"
#include "testflight/TestFlightViewModel.h"
#include "workspace/AppListModel.h"
#include "workspace/AppWindowViewModel.h"
#include "workspace/BackgroundSettingsViewModel.h"
#include "workspace/OverviewViewModel.h"
#include "workspace/SectionHost.h"
#include "workspace/WorkspaceViewModel.h"

#include <QtQml/qqml.h>

struct WorkspaceViewModelForeign {
    Q_GADGET
    QML_FOREIGN(WorkspaceViewModel)
    QML_NAMED_ELEMENT(WorkspaceViewModel)
    QML_UNCREATABLE("made by the application")
};

struct AppWindowViewModelForeign {
    Q_GADGET
    QML_FOREIGN(AppWindowViewModel)
    QML_NAMED_ELEMENT(AppWindowViewModel)
    QML_UNCREATABLE("made by the application")
};

struct SectionHostForeign {
    Q_GADGET
    QML_FOREIGN(SectionHost)
    QML_NAMED_ELEMENT(SectionHost)
    QML_UNCREATABLE("made by the application")
};

struct RowListModelForeign {
    Q_GADGET
    QML_FOREIGN(RowListModel)
    QML_NAMED_ELEMENT(RowListModel)
    QML_UNCREATABLE("made by the application")
};

struct AppListModelForeign {
    Q_GADGET
    QML_FOREIGN(AppListModel)
    QML_NAMED_ELEMENT(AppListModel)
    QML_UNCREATABLE("made by the application")
};

struct OverviewViewModelForeign {
    Q_GADGET
    QML_FOREIGN(OverviewViewModel)
    QML_NAMED_ELEMENT(OverviewViewModel)
    QML_UNCREATABLE("made by the application")
};

struct MetadataViewModelForeign {
    Q_GADGET
    QML_FOREIGN(MetadataViewModel)
    QML_NAMED_ELEMENT(MetadataViewModel)
    QML_UNCREATABLE("made by the application")
};

struct VersionsListViewModelForeign {
    Q_GADGET
    QML_FOREIGN(VersionsListViewModel)
    QML_NAMED_ELEMENT(VersionsListViewModel)
    QML_UNCREATABLE("made by the application")
};

struct TestFlightViewModelForeign {
    Q_GADGET
    QML_FOREIGN(TestFlightViewModel)
    QML_NAMED_ELEMENT(TestFlightViewModel)
    QML_UNCREATABLE("made by the application")
};

struct BetaBuildDetailViewModelForeign {
    Q_GADGET
    QML_FOREIGN(BetaBuildDetailViewModel)
    QML_NAMED_ELEMENT(BetaBuildDetailViewModel)
    QML_UNCREATABLE("made by the application")
};

struct BetaAppInfoViewModelForeign {
    Q_GADGET
    QML_FOREIGN(BetaAppInfoViewModel)
    QML_NAMED_ELEMENT(BetaAppInfoViewModel)
    QML_UNCREATABLE("made by the application")
};

struct BetaFeedbackViewModelForeign {
    Q_GADGET
    QML_FOREIGN(BetaFeedbackViewModel)
    QML_NAMED_ELEMENT(BetaFeedbackViewModel)
    QML_UNCREATABLE("made by the application")
};

struct WriteConfirmationViewModelForeign {
    Q_GADGET
    QML_FOREIGN(WriteConfirmationViewModel)
    QML_NAMED_ELEMENT(WriteConfirmationViewModel)
    QML_UNCREATABLE("made by the application")
};

struct AccountSettingsViewModelForeign {
    Q_GADGET
    QML_FOREIGN(AccountSettingsViewModel)
    QML_NAMED_ELEMENT(AccountSettingsViewModel)
    QML_UNCREATABLE("made by the application")
};

struct AddAccountViewModelForeign {
    Q_GADGET
    QML_FOREIGN(AddAccountViewModel)
    QML_NAMED_ELEMENT(AddAccountViewModel)
    QML_UNCREATABLE("made by the application")
};

struct ChangeLogViewModelForeign {
    Q_GADGET
    QML_FOREIGN(ChangeLogViewModel)
    QML_NAMED_ELEMENT(ChangeLogViewModel)
    QML_UNCREATABLE("made by the application")
};

struct RateLimitStatusViewModelForeign {
    Q_GADGET
    QML_FOREIGN(RateLimitStatusViewModel)
    QML_NAMED_ELEMENT(RateLimitStatusViewModel)
    QML_UNCREATABLE("made by the application")
};

struct TaskListModelForeign {
    Q_GADGET
    QML_FOREIGN(TaskListModel)
    QML_NAMED_ELEMENT(TaskListModel)
    QML_UNCREATABLE("made by the application")
};

struct BackgroundSettingsViewModelForeign {
    Q_GADGET
    QML_FOREIGN(BackgroundSettingsViewModel)
    QML_NAMED_ELEMENT(BackgroundSettingsViewModel)
    QML_UNCREATABLE("made by the application")
};

struct BulkActionsViewModelForeign {
    Q_GADGET
    QML_FOREIGN(BulkActionsViewModel)
    QML_NAMED_ELEMENT(BulkActionsViewModel)
    QML_UNCREATABLE("made by the application")
};

struct AnalyticsViewModelForeign {
    Q_GADGET
    QML_FOREIGN(AnalyticsViewModel)
    QML_NAMED_ELEMENT(AnalyticsViewModel)
    QML_UNCREATABLE("made by the application")
};

struct PerformanceViewModelForeign {
    Q_GADGET
    QML_FOREIGN(PerformanceViewModel)
    QML_NAMED_ELEMENT(PerformanceViewModel)
    QML_UNCREATABLE("made by the application")
};

struct SalesViewModelForeign {
    Q_GADGET
    QML_FOREIGN(SalesViewModel)
    QML_NAMED_ELEMENT(SalesViewModel)
    QML_UNCREATABLE("made by the application")
};
