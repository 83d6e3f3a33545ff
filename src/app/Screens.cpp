// The screens are QML modules linked into the program; this brings their plugins in, so that the
// engine finds them without looking on disk.
#include <QtQml/qqmlextensionplugin.h>

Q_IMPORT_QML_PLUGIN(Varnis_AppPlugin)
Q_IMPORT_QML_PLUGIN(Varnis_ThemePlugin)
Q_IMPORT_QML_PLUGIN(Varnis_ApiPlugin)
Q_IMPORT_QML_PLUGIN(Varnis_MetadataPlugin)
Q_IMPORT_QML_PLUGIN(Varnis_ReleasePlugin)
Q_IMPORT_QML_PLUGIN(Varnis_TestFlightPlugin)
Q_IMPORT_QML_PLUGIN(Varnis_WorkspacePlugin)
Q_IMPORT_QML_PLUGIN(Varnis_ReportsPlugin)
Q_IMPORT_QML_PLUGIN(Varnis_PerformancePlugin)
Q_IMPORT_QML_PLUGIN(Varnis_SalesPlugin)
