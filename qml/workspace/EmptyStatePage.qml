import QtQuick
import QtQuick.Controls
import QtQuick.Layouts

Pane {
    signal openSettings
    signal startDemo
    signal showOnboarding

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 520)
        spacing: 12
        Label {
            Layout.fillWidth: true
            text: workspace.emptyStateTitle
            font.pixelSize: 20
            font.bold: true
            horizontalAlignment: Text.AlignHCenter
        }
        Label {
            Layout.fillWidth: true
            text: workspace.emptyStateText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Button {
                text: "Account hinzufügen …"
                highlighted: true
                onClicked: openSettings()
            }
            Button {
                text: "Demo-Modus"
                onClicked: startDemo()
            }
            Button {
                objectName: "showOnboardingButton"
                text: "Erste Schritte …"
                onClicked: showOnboarding()
            }
        }
    }
}
