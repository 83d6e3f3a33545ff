import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import "../metadata"
import "../release"

// The screen of the selected section, or a calm placeholder.
Pane {
    id: content
    property bool hasApp: false
    property string title
    property bool isBuilt: false
    property string emptyText
    property var overviewRows: []
    property string section
    property var metadata: null
    property var versionsList: null

    ColumnLayout {
        anchors.fill: parent
        visible: !content.hasApp
        Label {
            Layout.alignment: Qt.AlignCenter
            text: "Wähle links eine App."
            color: palette.placeholderText
        }
    }

    ColumnLayout {
        anchors.fill: parent
        visible: content.hasApp
        spacing: 12

        Label {
            text: content.title
            font.pixelSize: 22
            font.bold: true
            Accessible.role: Accessible.Heading
        }
        Loader {
            Layout.fillWidth: true
            Layout.fillHeight: true
            // The page takes the space it is given; its own wish must not feed back into the layout.
            Layout.preferredWidth: 0
            Layout.preferredHeight: 0
            active: content.isBuilt
            sourceComponent: content.section === "appStoreOptimization" && content.metadata ? metadataPage
                           : content.section === "releases" && content.versionsList ? versionsPage
                           : overviewPage
        }
        Label {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !content.isBuilt
            text: content.emptyText
            wrapMode: Text.Wrap
            verticalAlignment: Text.AlignTop
            color: palette.placeholderText
        }
    }

    Component {
        id: overviewPage
        OverviewPage {
            rows: content.overviewRows
        }
    }
    Component {
        id: metadataPage
        MetadataPage {
            model: content.metadata
        }
    }
    Component {
        id: versionsPage
        VersionsPage {
            model: content.versionsList
        }
    }
}
