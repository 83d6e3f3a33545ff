import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// One app in a window of its own.
ApplicationWindow {
    id: window
    objectName: "appWindow"
    required property var model
    width: 960
    height: 640
    minimumWidth: 800
    minimumHeight: 520
    visible: true
    title: model.windowTitle

    RowLayout {
        anchors.fill: parent
        spacing: 0
        SectionSidebar {
            Layout.preferredWidth: 210
            Layout.fillHeight: true
            sections: window.model.sections
            selectedSection: window.model.selectedSection
            onSectionChosen: raw => window.model.selectedSection = raw
        }
        ToolSeparator {
            Layout.fillHeight: true
        }
        SectionContent {
            Layout.fillWidth: true
            Layout.fillHeight: true
            hasApp: window.model.hasApp
            title: window.model.selectedSectionTitle
            isBuilt: window.model.isSectionBuilt
            emptyText: window.model.emptySectionText
            overviewRows: window.model.overviewRows
            section: window.model.selectedSection
            metadata: window.model.metadata
            versionsList: window.model.versionsList
        }
    }
}
