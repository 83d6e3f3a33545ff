pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// A list of testers from a file: what was understood, then the confirmation of the import.
Dialog {
    id: sheet
    objectName: "importTestersSheet"
    required property TestFlightViewModel model
    modal: true
    parent: Overlay.overlay
    anchors.centerIn: Overlay.overlay
    width: Math.min(Overlay.overlay ? Overlay.overlay.width - 80 : 560, 560)
    height: Math.min(Overlay.overlay ? Overlay.overlay.height - 80 : 600, 600)
    visible: model.isImportingTesters
    closePolicy: Popup.CloseOnEscape
    title: sheet.model.importTexts[0]
    onRejected: model.isImportingTesters = false

    FileDialog {
        id: fileDialog
        objectName: "importFileDialog"
        title: sheet.model.importTexts[0]
        nameFilters: ["CSV- und Textdateien (*.csv *.txt *.tsv)", "Alle Dateien (*)"]
        onAccepted: sheet.model.startPreviewImport(selectedFile)
    }

    ColumnLayout {
        anchors.fill: parent
        spacing: 6

        Label {
            Layout.fillWidth: true
            text: sheet.model.importTargetCaption
            font.bold: true
        }
        Label {
            Layout.fillWidth: true
            visible: !sheet.model.hasImportPreview
            text: sheet.model.importTexts[1]
            wrapMode: Text.Wrap
        }
        Button {
            objectName: "chooseImportFileButton"
            visible: !sheet.model.hasImportPreview
            text: sheet.model.importTexts[2]
            onClicked: fileDialog.open()
        }
        BusyIndicator {
            visible: sheet.model.isReadingImportFile
            running: visible
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: sheet.model.addTesterError
            color: Theme.negative
            wrapMode: Text.Wrap
        }
        ScrollView {
            Layout.fillWidth: true
            Layout.fillHeight: true
            visible: sheet.model.hasImportPreview
            clip: true
            ColumnLayout {
                width: sheet.availableWidth - 16
                spacing: 4
                Label {
                    objectName: "importRecognizedTitle"
                    text: sheet.model.importRecognizedTitle
                    font.bold: true
                }
                Repeater {
                    model: sheet.model.importNames
                    delegate: Label {
                        required property string name
                        Layout.fillWidth: true
                        text: name
                        elide: Text.ElideRight
                    }
                }
                Label {
                    visible: text !== ""
                    text: sheet.model.importMoreNames
                    color: palette.placeholderText
                }
                Label {
                    visible: sheet.model.importDuplicateSentence !== ""
                    text: sheet.model.importTexts[3]
                    font.bold: true
                }
                Label {
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: sheet.model.importDuplicateSentence
                    wrapMode: Text.Wrap
                }
            }
        }
        Label {
            visible: text !== ""
            text: sheet.model.importRejectedTitle
            font.bold: true
        }
        // A list that only makes the rows it shows: a file of many thousand lines without an
        // address must not make as many labels.
        ListView {
            id: rejectedList
            objectName: "importRejectedList"
            Layout.fillWidth: true
            Layout.preferredHeight: Math.min(contentHeight, 140)
            visible: count > 0
            clip: true
            model: sheet.model.importRejectedLines
            ScrollBar.vertical: ScrollBar {}
            delegate: RowLayout {
                id: rejected
                required property string lineLabel
                required property string lineText
                width: rejectedList.width - 12
                Label {
                    text: rejected.lineLabel
                    color: palette.placeholderText
                }
                Label {
                    Layout.fillWidth: true
                    text: rejected.lineText
                    elide: Text.ElideRight
                }
            }
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: sheet.model.importCostSentence
            wrapMode: Text.Wrap
            color: palette.placeholderText
        }
        RowLayout {
            Layout.fillWidth: true
            Label {
                Layout.fillWidth: true
                objectName: "importFooter"
                text: sheet.model.importFooter
            }
            Button {
                objectName: "otherImportFileButton"
                visible: sheet.model.hasImportPreview
                text: sheet.model.importTexts[4]
                onClicked: fileDialog.open()
            }
            Button {
                objectName: "cancelImportButton"
                text: sheet.model.importTexts[5]
                onClicked: sheet.reject()
            }
            Button {
                objectName: "confirmImportButton"
                text: sheet.model.importTexts[6]
                highlighted: true
                enabled: sheet.model.canImport
                onClicked: sheet.model.startRequestImportTesters()
            }
        }
    }
}
