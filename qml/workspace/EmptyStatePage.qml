pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App
import Varnis.Theme

Pane {
    id: page

    ColumnLayout {
        anchors.centerIn: parent
        width: Math.min(parent.width - 40, 520)
        spacing: 12
        Label {
            Layout.fillWidth: true
            text: Shell.workspace.emptyStateTitle
            font.pixelSize: Theme.pageTitleSize
            font.bold: true
            horizontalAlignment: Text.AlignHCenter
        }
        Label {
            Layout.fillWidth: true
            text: Shell.workspace.emptyStateText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }
        RowLayout {
            Layout.alignment: Qt.AlignHCenter
            Button {
                text: "Account hinzufügen …"
                highlighted: true
                onClicked: Shell.requestSettings()
            }
            Button {
                text: "Demo-Modus"
                onClicked: Shell.workspace.isDemoModeEnabled = true
            }
            Button {
                objectName: "showOnboardingButton"
                text: "Erste Schritte …"
                onClicked: Shell.workspace.isOnboardingPresented = true
            }
        }
    }
}
