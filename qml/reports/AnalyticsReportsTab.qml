pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// Apple's analytics reports of the app: the chain from request to segment on top, the chosen
// segment's summary and chart of one column below it, and the file's first rows at the bottom.
ColumnLayout {
    id: tab
    required property AnalyticsViewModel model
    spacing: Theme.spacing

    RowLayout {
        Layout.fillWidth: true
        Layout.preferredHeight: 140
        spacing: 8
        AnalyticsChainColumn {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            level: "request"
            heading: "Anfragen"
            rows: tab.model.requests
            errorText: tab.model.requestsError
            busy: tab.model.isLoadingRequests || tab.model.isCreatingRequest
            onChosen: itemId => tab.model.choose("request", itemId)
            onChosenRow: row => tab.model.chooseRow("request", row)
        }
        AnalyticsChainColumn {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            level: "report"
            heading: "Reports"
            rows: tab.model.reports
            errorText: tab.model.reportsError
            busy: tab.model.isLoadingReports
            onChosen: itemId => tab.model.choose("report", itemId)
            onChosenRow: row => tab.model.chooseRow("report", row)
        }
        AnalyticsChainColumn {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            level: "instance"
            heading: "Zeiträume"
            rows: tab.model.instances
            errorText: tab.model.instancesError
            busy: tab.model.isLoadingInstances
            onChosen: itemId => tab.model.choose("instance", itemId)
            onChosenRow: row => tab.model.chooseRow("instance", row)
        }
        AnalyticsChainColumn {
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.preferredWidth: 1
            level: "segment"
            heading: "Segmente"
            rows: tab.model.segments
            errorText: tab.model.segmentsError
            busy: tab.model.isLoadingSegments || tab.model.isLoadingTable
            onChosen: itemId => tab.model.choose("segment", itemId)
            onChosenRow: row => tab.model.chooseRow("segment", row)
        }
    }
    RowLayout {
        Layout.fillWidth: true
        Button {
            objectName: "createSnapshotButton"
            text: "Momentaufnahme anfordern"
            enabled: !tab.model.isCreatingRequest
            onClicked: tab.model.startCreatingSnapshotRequest()
        }
        Label {
            objectName: "requestsHint"
            Layout.fillWidth: true
            visible: text !== ""
            text: tab.model.requestsHint
            color: palette.placeholderText
            wrapMode: Text.Wrap
        }
    }
    Label {
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.model.tableError
        color: Theme.negative
        wrapMode: Text.Wrap
    }
    Label {
        objectName: "sampleNote"
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.model.sampleNote
        color: Theme.noticeText
        font.pixelSize: Theme.captionSize
        wrapMode: Text.Wrap
    }

    // Everything below belongs to a loaded segment.
    ColumnLayout {
        Layout.fillWidth: true
        Layout.fillHeight: true
        visible: tab.model.loadedSegmentID !== "" || tab.model.isLoadingTable
        spacing: Theme.spacing

        RowLayout {
            Layout.fillWidth: true
            spacing: 12
            TabBar {
                id: periods
                objectName: "analyticsPeriods"
                currentIndex: tab.model.period
                Repeater {
                    model: tab.model.periodLabels
                    TabButton {
                        required property string modelData
                        required property int index
                        objectName: "period_" + index
                        text: modelData
                        width: implicitWidth
                        onClicked: tab.model.period = index
                    }
                }
            }
            Label {
                Layout.fillWidth: true
                visible: tab.model.numericColumns.count > 0
                text: "Spalten aus Apples Report – die Namen stammen unverändert aus der Datei"
                font.pixelSize: Theme.captionSize
                color: palette.placeholderText
                wrapMode: Text.Wrap
            }
        }
        Flow {
            objectName: "analyticsColumns"
            Layout.fillWidth: true
            spacing: 4
            Repeater {
                model: tab.model.numericColumns
                delegate: Button {
                    required property int columnIndex
                    required property string name
                    required property bool isSelected
                    objectName: "column_" + columnIndex
                    text: name
                    highlighted: isSelected
                    Accessible.checkable: true
                    Accessible.checked: isSelected
                    onClicked: tab.model.selectedColumnIndex = columnIndex
                }
            }
        }
        RowLayout {
            Layout.fillWidth: true
            Layout.preferredHeight: 160
            spacing: 12
            ColumnLayout {
                Layout.preferredWidth: 210
                Layout.maximumWidth: 240
                Layout.alignment: Qt.AlignTop
                visible: tab.model.summaryHeadline !== ""
                spacing: 2
                Label {
                    objectName: "summaryHeadline"
                    Layout.fillWidth: true
                    text: tab.model.summaryHeadline
                    font.bold: true
                    wrapMode: Text.Wrap
                }
                Label {
                    objectName: "summaryTotal"
                    text: tab.model.totalText
                    font.pixelSize: Theme.titleSize
                    font.bold: true
                }
                Label {
                    text: tab.model.daysWithDataText
                    font.pixelSize: Theme.captionSize
                    color: palette.placeholderText
                }
                Label {
                    Layout.topMargin: 6
                    text: "VORHERIGER ZEITRAUM"
                    font.pixelSize: Theme.captionSize
                    color: palette.placeholderText
                }
                Label {
                    text: tab.model.previousTotalText
                    visible: text !== ""
                }
                Label {
                    objectName: "summaryChange"
                    text: tab.model.changeText
                    font.bold: true
                }
                Label {
                    Layout.fillWidth: true
                    visible: text !== ""
                    text: tab.model.changeNote
                    font.pixelSize: Theme.captionSize
                    color: palette.placeholderText
                    wrapMode: Text.Wrap
                }
            }
            ReportChartItem {
                objectName: "analyticsChart"
                Layout.fillWidth: true
                Layout.fillHeight: true
                points: tab.model.chartPoints
                emptyText: tab.model.summaryUnavailableReason
                lineColor: Theme.accent
                axisColor: tab.palette.mid
                textColor: tab.palette.windowText
                fontPixelSize: Theme.captionSize
                Accessible.role: Accessible.Chart
                Accessible.name: tab.model.summaryHeadline
            }
        }
        Label {
            Layout.fillWidth: true
            text: tab.model.tableCaption
            font.bold: true
        }
        Label {
            Layout.fillWidth: true
            visible: text !== ""
            text: tab.model.tableNote
            font.pixelSize: Theme.captionSize
            color: palette.placeholderText
            wrapMode: Text.Wrap
        }
        // The column names over the rows; they follow the rows sideways.
        Rectangle {
            Layout.fillWidth: true
            Layout.preferredHeight: headerRow.implicitHeight
            color: Theme.noticeBackground
            clip: true
            Row {
                id: headerRow
                x: -table.contentX
                Repeater {
                    model: tab.model.tableColumns
                    Label {
                        required property string modelData
                        width: table.cellWidth
                        padding: 2
                        text: modelData
                        color: Theme.noticeText
                        font.bold: true
                        elide: Text.ElideRight
                    }
                }
            }
        }
        ListView {
            id: table
            objectName: "analyticsTable"
            readonly property int cellWidth: 140
            Layout.fillWidth: true
            Layout.fillHeight: true
            Layout.minimumHeight: 80
            clip: true
            model: tab.model.tableRows
            contentWidth: Math.max(width, tab.model.tableColumns.length * cellWidth)
            flickableDirection: Flickable.AutoFlickIfNeeded
            ScrollBar.vertical: ScrollBar {}
            ScrollBar.horizontal: ScrollBar {}
            delegate: Row {
                id: tableRow
                required property int row
                required property list<string> cells
                objectName: "analyticsRow_" + row
                Repeater {
                    model: tableRow.cells
                    Label {
                        required property string modelData
                        width: table.cellWidth
                        padding: 2
                        text: modelData
                        elide: Text.ElideRight
                    }
                }
            }
        }
    }
}
