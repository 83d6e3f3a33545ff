import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import QtQuick.Window

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

    function open() {
        changeLog.refresh()
        show()
        raise()
        requestActivate()
    }

    ColumnLayout {
        anchors.fill: parent
        anchors.margins: 12
        spacing: 8

        RowLayout {
            Button {
                text: "Aktualisieren"
                onClicked: changeLog.refresh()
            }
            Button {
                text: "Als Text sichern …"
                enabled: !changeLog.isEmpty
                onClicked: saveDialog.open()
            }
            Button {
                text: "Protokoll leeren"
                enabled: !changeLog.isEmpty
                onClicked: changeLog.clear()
            }
            Label {
                Layout.fillWidth: true
                text: changeLog.message
                elide: Text.ElideRight
            }
        }

        Label {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: changeLog.isEmpty
            text: changeLog.emptyText
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
            visible: !changeLog.isEmpty
            clip: true
            model: changeLog.entries
            keyNavigationEnabled: true
            activeFocusOnTab: true
            delegate: ItemDelegate {
                id: entry
                required property string dateText
                required property string method
                required property string path
                required property string statusText
                required property string requestIDText
                required property string accountName
                required property string errorMessage
                required property bool isSuccess
                width: list.width
                Accessible.name: method + " " + path + ", " + statusText
                contentItem: RowLayout {
                    spacing: 8
                    Label {
                        text: entry.isSuccess ? "✓" : "!"
                        color: entry.isSuccess ? "#1d6b2a" : "#8a1c1c"
                        font.bold: true
                    }
                    ColumnLayout {
                        Layout.fillWidth: true
                        spacing: 0
                        Label {
                            Layout.fillWidth: true
                            text: entry.method + " " + entry.path
                            elide: Text.ElideMiddle
                            font.family: "monospace"
                        }
                        Label {
                            Layout.fillWidth: true
                            text: [entry.dateText, entry.statusText, entry.requestIDText, entry.accountName, entry.errorMessage].filter(t => t !== "").join(" · ")
                            elide: Text.ElideRight
                            color: palette.placeholderText
                        }
                    }
                }
            }
        }
    }

    FileDialog {
        id: saveDialog
        title: "Änderungsprotokoll sichern"
        fileMode: FileDialog.SaveFile
        acceptLabel: "Sichern"
        currentFile: changeLog.proposedFileName
        nameFilters: ["Text mit Tabulatoren (*.tsv)"]
        onAccepted: changeLog.exportTo(selectedFile.toString())
    }
}
