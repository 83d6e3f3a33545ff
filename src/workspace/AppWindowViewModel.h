#pragma once

#include "workspace/SidebarSection.h"

#include <QObject>
#include <QVariantList>

class AppState;
class MetadataViewModel;
class VersionsListViewModel;

// A window that shows one app with a section of its own, independent of the main window.
class AppWindowViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString appID READ appID CONSTANT)
    Q_PROPERTY(bool hasApp READ hasApp NOTIFY changed)
    Q_PROPERTY(QString appName READ appName NOTIFY changed)
    Q_PROPERTY(QString windowTitle READ windowTitle NOTIFY changed)
    Q_PROPERTY(QVariantList overviewRows READ overviewRows NOTIFY changed)
    Q_PROPERTY(QVariantList sections READ sections CONSTANT)
    Q_PROPERTY(QString selectedSection READ selectedSection WRITE selectSection NOTIFY changed)
    Q_PROPERTY(QString selectedSectionTitle READ selectedSectionTitle NOTIFY changed)
    Q_PROPERTY(bool isSectionBuilt READ isSectionBuilt NOTIFY changed)
    Q_PROPERTY(QString emptySectionText READ emptySectionText NOTIFY changed)
    Q_PROPERTY(QObject* metadata READ metadata CONSTANT)
    Q_PROPERTY(QObject* versionsList READ versionsList CONSTANT)
public:
    AppWindowViewModel(AppState& state, QString appID, SidebarSection section, QObject* parent = nullptr);

    QString appID() const { return m_appID; }
    bool hasApp() const;
    QString appName() const;
    QString windowTitle() const;
    QVariantList overviewRows() const;
    QVariantList sections() const;
    QString selectedSection() const { return SidebarSections::rawValue(m_section); }
    void selectSection(const QString& raw);
    QString selectedSectionTitle() const { return SidebarSections::title(m_section); }
    bool isSectionBuilt() const;
    QString emptySectionText() const;
    QObject* metadata() const;
    QObject* versionsList() const;

Q_SIGNALS:
    void changed();

private:
    AppState& m_state;
    QString m_appID;
    SidebarSection m_section;
    MetadataViewModel* m_metadata = nullptr;
    VersionsListViewModel* m_versions = nullptr;
    bool m_metadataLoaded = false;
    bool m_versionsLoaded = false;

    void loadOpenSection();
};
