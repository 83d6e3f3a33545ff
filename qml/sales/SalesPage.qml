pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Dialogs
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The account's reports: what to load on top, the loaded report's summary, Apple's table and
// the kept reports below, one tab each.
Pane {
    id: page
    objectName: "reportsPage"
    required property SalesViewModel model
    required property string title

    ColumnLayout {
        anchors.fill: parent
        spacing: 8

        Label {
            Layout.fillWidth: true
            text: page.title
            font.pixelSize: Theme.titleSize
            font.bold: true
            elide: Text.ElideRight
            Accessible.role: Accessible.Heading
        }
        Label {
            objectName: "vendorNumberHint"
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.vendorNumberHint
            wrapMode: Text.Wrap
            color: Theme.caution
        }

        GridLayout {
            Layout.fillWidth: true
            columns: 7
            columnSpacing: 8
            rowSpacing: 6

            Label { text: "Bericht" }
            ComboBox {
                id: typeChoice
                objectName: "reportTypeChoice"
                Layout.preferredWidth: 170
                model: page.model.typeOptions
                textRole: "label"
                valueRole: "value"
                currentIndex: page.model.typeIndex
                Accessible.name: "Bericht"
                onActivated: page.model.reportType = currentValue
            }
            Label { text: "Zeitraum" }
            ComboBox {
                objectName: "frequencyChoice"
                Layout.preferredWidth: 140
                model: page.model.frequencyOptions
                textRole: "label"
                valueRole: "value"
                currentIndex: page.model.frequencyIndex
                Accessible.name: "Zeitraum"
                onActivated: page.model.frequency = currentValue
            }
            Label { text: page.model.dateUnitLabel }
            ComboBox {
                objectName: "periodChoice"
                Layout.preferredWidth: 190
                model: page.model.periodOptions
                textRole: "label"
                valueRole: "value"
                currentIndex: page.model.periodIndex
                Accessible.name: page.model.dateUnitLabel
                onActivated: page.model.reportDate = currentValue
            }
            Button {
                objectName: "loadSalesButton"
                text: "Bericht laden"
                enabled: !page.model.isLoading
                onClicked: page.model.startLoad()
            }

            Label { text: "Region" }
            TextField {
                objectName: "financeRegionField"
                Layout.preferredWidth: 170
                text: page.model.financeRegion
                selectByMouse: true
                Accessible.name: "Region"
                onEditingFinished: page.model.financeRegion = text
            }
            Label { text: "MONAT" }
            ComboBox {
                objectName: "financeMonthChoice"
                Layout.preferredWidth: 140
                model: page.model.financeMonthOptions
                textRole: "label"
                valueRole: "value"
                currentIndex: page.model.financeMonthIndex
                Accessible.name: "Monat des Finanzberichts"
                onActivated: page.model.financeMonth = currentValue
            }
            Item { Layout.preferredWidth: 1 }
            Item { Layout.preferredWidth: 1 }
            Button {
                objectName: "loadFinanceButton"
                text: "Finanzbericht laden"
                enabled: !page.model.isLoading
                onClicked: page.model.startLoadFinanceReport()
            }
        }

        RowLayout {
            Layout.fillWidth: true
            spacing: 8
            BusyIndicator {
                Layout.preferredHeight: 24
                Layout.preferredWidth: 24
                visible: page.model.isLoading || page.model.isArchiving || page.model.isExporting
                running: visible
            }
            Label {
                objectName: "reportCaption"
                Layout.fillWidth: true
                text: page.model.reportCaption
                font.bold: true
                elide: Text.ElideRight
            }
            Button {
                objectName: "archiveReportButton"
                text: page.model.archiveActionTitle
                enabled: page.model.canArchive
                onClicked: page.model.startArchiveCurrentReport()
            }
            Button {
                objectName: "exportCsvButton"
                text: "Als CSV exportieren …"
                enabled: page.model.canExport
                onClicked: {
                    page.model.prepareExport("csv")
                    exportDialog.open()
                }
            }
            Button {
                objectName: "exportJsonButton"
                text: "Als JSON exportieren …"
                enabled: page.model.canExport
                onClicked: {
                    page.model.prepareExport("json")
                    exportDialog.open()
                }
            }
        }
        Label {
            objectName: "reportsError"
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.errorMessage
            wrapMode: Text.Wrap
            color: Theme.negative
        }
        Label {
            objectName: "reportsStatus"
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.statusMessage
            wrapMode: Text.Wrap
        }
        Label {
            objectName: "reportsSampleNote"
            Layout.fillWidth: true
            visible: text !== ""
            text: page.model.sampleNote
            wrapMode: Text.Wrap
            font.italic: true
        }

        TabBar {
            objectName: "reportTabs"
            Layout.fillWidth: true
            currentIndex: page.model.selectedTab
            Repeater {
                model: page.model.tabTitles
                TabButton {
                    required property string modelData
                    required property int index
                    objectName: "reportTab_" + index
                    text: modelData
                    onClicked: page.model.selectedTab = index
                }
            }
        }
        StackLayout {
            Layout.fillWidth: true
            Layout.fillHeight: true
            currentIndex: page.model.selectedTab
            SalesSummaryTab {
                model: page.model
            }
            SalesTableTab {
                model: page.model
            }
            SalesArchiveTab {
                model: page.model
            }
        }
    }

    RemoveReportSheet {
        model: page.model
    }

    FileDialog {
        id: exportDialog
        objectName: "reportExportDialog"
        title: "Bericht exportieren"
        fileMode: FileDialog.SaveFile
        acceptLabel: "Exportieren"
        currentFolder: page.model.exportFolder
        selectedFile: page.model.exportProposal
        nameFilters: page.model.exportNameFilters
        onAccepted: page.model.startExport(selectedFile)
    }
}
