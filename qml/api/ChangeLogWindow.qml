import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import QtQuick.Window
import Varnis.App
import Varnis.Theme

// Every write that left the application, with Apple's request id; never contents.
Window {
    id: window
    objectName: "changeLogWindow"
    title: "Änderungsprotokoll"
    width: 760
    height: 520
    minimumWidth: 600
    minimumHeight: 360
    visible: false
    color: palette.window

    // The log is read afresh each time the window is shown.
    onVisibleChanged: if (visible) Shell.changeLog.refresh()

    // Esc and Ctrl+W close the window, as its own close button does.
    Shortcut {
        sequences: ["Esc", "Ctrl+W"]
        onActivated: window.close()
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 12
        spacing: 8

        RowLayout {
            Button {
                text: "Aktualisieren"
                onClicked: Shell.changeLog.refresh()
            }
            Button {
                text: "Als Text sichern …"
                enabled: !Shell.changeLog.isEmpty
                onClicked: {
                    if (!window.saveDialog)
                        window.saveDialog = saveDialogComponent.createObject(window)
                    if (window.saveDialog)
                        window.saveDialog.open()
                }
            }
            Button {
                text: "Protokoll leeren"
                enabled: !Shell.changeLog.isEmpty
                onClicked: Shell.changeLog.clear()
            }
            Label {
                Layout.fillWidth: true
                text: Shell.changeLog.message
                elide: Text.ElideRight
            }
        }

        Label {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: Shell.changeLog.isEmpty
            text: Shell.changeLog.emptyText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
            verticalAlignment: Text.AlignVCenter
            color: palette.placeholderText
        }

        ListView {
            id: list
            objectName: "changeLogList"
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: !Shell.changeLog.isEmpty
            clip: true
            model: Shell.changeLog.entries
            keyNavigationEnabled: true
            activeFocusOnTab: true
            delegate: ItemDelegate {
                id: entry
                required property string requestLine
                required property string summary
                required property string mark
                required property string markTone
                required property string accessibleName
                width: ListView.view.width
                Accessible.name: accessibleName
                contentItem: RowLayout {
                    spacing: 8
                    Label {
                        text: entry.mark
                        color: Theme.toneColor(entry.markTone, palette.windowText)
                        font.bold: true
                    }
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 0
                        Label {
                            Layout.fillWidth: true
                            text: entry.requestLine
                            elide: Text.ElideMiddle
                            font.family: "monospace"
                        }
                        Label {
                            Layout.fillWidth: true
                            text: entry.summary
                            elide: Text.ElideRight
                            color: palette.placeholderText
                        }
                    }
                }
            }
        }
    }

    // Made on first use; should making the dialog fail, there is no dialog to open rather than
    // one without its implementation.
    property var saveDialog: null

    Component {
        id: saveDialogComponent
        FileDialog {
            objectName: "changeLogSaveDialog"
            title: "Änderungsprotokoll sichern"
            fileMode: FileDialog.SaveFile
            acceptLabel: "Sichern"
            currentFile: Shell.changeLog.proposedFileName
            nameFilters: ["Text mit Tabulatoren (*.tsv)"]
            onAccepted: Shell.changeLog.exportToChosenFile(selectedFile)
        }
    }
}
