pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// Apple's performance figures of the app on top, below them a build's diagnostic signatures of
// one kind on the left and the chosen signature's logs on the right.
ColumnLayout {
    id: tab
    required property PerformanceViewModel model
    spacing: Theme.spacing

    // A tab that is never looked at costs no request.
    // While the page is torn down its model goes before the tab does.
    Component.onCompleted: tab.model?.noteShown(visible)
    onVisibleChanged: tab.model?.noteShown(visible)

    Label {
        objectName: "perfError"
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.model.errorMessage
        color: Theme.negative
        wrapMode: Text.Wrap
    }
    Label {
        objectName: "perfStatus"
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.model.statusMessage
        color: Theme.positive
        wrapMode: Text.Wrap
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.spacing
        Label {
            text: "Kennzahlen"
            font.pixelSize: Theme.headingSize
            font.bold: true
        }
        BusyIndicator {
            Layout.preferredHeight: 20
            Layout.preferredWidth: 20
            running: tab.model.isLoading
            visible: running
        }
        Item {
            Layout.fillWidth: true
        }
        ComboBox {
            objectName: "perfDeviceType"
            Layout.preferredWidth: 180
            model: tab.model.deviceTypeLabels
            currentIndex: tab.model.deviceTypeIndex
            Accessible.name: "Geräteart"
            onActivated: index => tab.model.deviceTypeIndex = index
        }
        Button {
            objectName: "perfReload"
            text: "Neu laden"
            enabled: !tab.model.isLoading
            onClicked: tab.model.startLoad(true)
        }
    }
    Label {
        objectName: "perfMetricsEmpty"
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.model.metricsEmptyText
        wrapMode: Text.Wrap
        color: palette.placeholderText
    }
    ListView {
        id: metricList
        objectName: "perfMetricsList"
        Layout.fillWidth: true
        Layout.fillHeight: true
        Layout.minimumHeight: 120
        visible: count > 0
        clip: true
        model: tab.model.metrics
        activeFocusOnTab: true
        keyNavigationEnabled: true
        Accessible.name: "Kennzahlen"
        delegate: ItemDelegate {
            id: metric
            required property string heading
            required property string title
            required property string valueText
            required property string detail
            required property string accessibleName
            width: metricList.width
            Accessible.name: accessibleName
            contentItem: ColumnLayout {
                spacing: 2
                Label {
                    Layout.fillWidth: true
                    Layout.topMargin: 4
                    visible: text !== ""
                    text: metric.heading
                    font.bold: true
                }
                RowLayout {
                spacing: Theme.spacing
                Label {
                    Layout.preferredWidth: 200
                    text: metric.title
                    elide: Text.ElideRight
                }
                Label {
                    Layout.preferredWidth: 160
                    text: metric.valueText
                    font.bold: true
                }
                Label {
                    Layout.fillWidth: true
                    text: metric.detail
                    elide: Text.ElideRight
                    color: palette.placeholderText
                }
                }
            }
        }
    }

    RowLayout {
        Layout.fillWidth: true
        spacing: Theme.spacing
        Label {
            text: "Diagnosen"
            font.pixelSize: Theme.headingSize
            font.bold: true
        }
        Item {
            Layout.fillWidth: true
        }
        ComboBox {
            objectName: "perfBuild"
            Layout.preferredWidth: 220
            model: tab.model.builds
            textRole: "title"
            valueRole: "buildId"
            currentIndex: tab.model.selectedBuildIndex
            Accessible.name: "Build"
            onActivated: index => tab.model.chooseBuild(index)
        }
        ComboBox {
            objectName: "perfDiagnosticType"
            Layout.preferredWidth: 180
            model: tab.model.diagnosticTypeLabels
            currentIndex: tab.model.diagnosticTypeIndex
            Accessible.name: "Art der Diagnose"
            onActivated: index => tab.model.diagnosticTypeIndex = index
        }
    }
    Label {
        Layout.fillWidth: true
        text: tab.model.signaturesNote
        wrapMode: Text.Wrap
        font.pixelSize: Theme.smallSize
        color: palette.placeholderText
    }
    Label {
        objectName: "perfSignaturesEmpty"
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.model.signaturesEmptyText
        wrapMode: Text.Wrap
        color: palette.placeholderText
    }
    RowLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        spacing: 8

        ListView {
            id: signatureList
            objectName: "perfSignaturesList"
            Layout.preferredWidth: 340
            Layout.fillHeight: true
            Layout.minimumHeight: 120
            clip: true
            model: tab.model.signatures
            activeFocusOnTab: true
            keyNavigationEnabled: true
            Accessible.name: "Signaturen"
            delegate: ItemDelegate {
                id: signature
                required property string signatureId
                required property string title
                required property string detailText
                required property string insightText
                required property bool isSelected
                objectName: "perfSignature_" + signatureId
                width: signatureList.width
                highlighted: isSelected
                Accessible.name: title
                onClicked: tab.model.chooseSignature(signatureId)
                contentItem: ColumnLayout {
                    spacing: 0
                    Label {
                        Layout.fillWidth: true
                        text: signature.title
                        elide: Text.ElideMiddle
                        font.family: "monospace"
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: signature.detailText
                        font.pixelSize: Theme.captionSize
                        color: palette.placeholderText
                    }
                    Label {
                        Layout.fillWidth: true
                        visible: text !== ""
                        text: signature.insightText
                        wrapMode: Text.Wrap
                        font.pixelSize: Theme.captionSize
                    }
                }
            }
        }
        ColumnLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            spacing: Theme.spacing
            ScrollView {
                Layout.fillWidth: true
                Layout.fillHeight: true
                TextArea {
                    objectName: "perfLogText"
                    readOnly: true
                    text: tab.model.logText
                    font.family: "monospace"
                    wrapMode: TextEdit.NoWrap
                    Accessible.name: "Protokoll"
                }
            }
            Button {
                objectName: "perfExportLog"
                Layout.alignment: Qt.AlignRight
                text: "Protokoll exportieren …"
                enabled: tab.model.hasLog
                onClicked: {
                    if (!tab.saveDialog)
                        tab.saveDialog = saveDialogComponent.createObject(tab)
                    if (tab.saveDialog)
                        tab.saveDialog.open()
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
            objectName: "perfLogSaveDialog"
            title: "Protokoll exportieren"
            fileMode: FileDialog.SaveFile
            acceptLabel: "Exportieren"
            currentFile: tab.model.proposedLogFileName
            nameFilters: ["JSON (*.json)"]
            onAccepted: tab.model.exportLogTo(selectedFile)
        }
    }
}
