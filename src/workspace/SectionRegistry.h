#pragma once

#include "workspace/ManagedApp.h"
#include "workspace/SidebarSection.h"

#include <QList>
#include <QObject>
#include <QUrl>

#include <functional>

class AppState;
class WriteConfirmationViewModel;

// What a section's presentation model is made with: the app it shows, and the window's one
// write-confirmation presenter through which it asks before it writes.
struct SectionContext {
    AppState& state;
    ManagedApp app;
    WriteConfirmationViewModel& presenter;
    QObject* parent;
};

// The sections that are built: for each, the screen that shows it and how its model is made and
// first loaded. Adding a subsystem to the window means adding one entry; the windows know no
// section by name.
class SectionRegistry {
public:
    struct Entry {
        SidebarSection section;
        // The QML component of the screen; it has a required property `model`.
        QUrl page;
        std::function<QObject*(const SectionContext&)> makeModel;
        // Called once when the section is first shown for the app.
        std::function<void(QObject*)> open;
    };

    void add(Entry entry) { m_entries.append(std::move(entry)); }
    const Entry* find(SidebarSection section) const;
    bool isBuilt(SidebarSection section) const { return find(section) != nullptr; }

private:
    QList<Entry> m_entries;
};
