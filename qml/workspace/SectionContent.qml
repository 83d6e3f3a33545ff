import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

// The screen of the selected section, or a calm placeholder.
Pane {
    id: content
    property bool hasApp: false
    property string title
    property bool isBuilt: false
    property string emptyText
    property var overviewRows: []

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
        OverviewPage {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: content.isBuilt
            rows: content.overviewRows
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
}
