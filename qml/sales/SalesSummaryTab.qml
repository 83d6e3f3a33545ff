pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// The few figures of the loaded report and how they compare with the period before.
ColumnLayout {
    id: tab
    required property SalesViewModel model
    spacing: 8

    GridLayout {
        visible: tab.model.hasReport
        columns: 2
        columnSpacing: 16
        rowSpacing: 4
        Label { text: "Einheiten" }
        Label {
            objectName: "unitsValue"
            text: tab.model.unitsText
            font.bold: true
        }
        Label { text: "Erlöse" }
        Label {
            objectName: "proceedsValue"
            text: tab.model.proceedsText
            font.bold: true
        }
        Label { text: "Zeilen" }
        Label {
            objectName: "rowCountValue"
            text: tab.model.rowCount
            font.bold: true
        }
    }
    Label {
        objectName: "comparisonText"
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.model.comparisonText
        wrapMode: Text.Wrap
    }
    Label {
        Layout.fillWidth: true
        visible: tab.model.hasReport
        text: tab.model.footnote
        wrapMode: Text.Wrap
        font.pixelSize: Theme.smallSize
        color: palette.placeholderText
    }
    Item {
        Layout.fillHeight: true
    }
}
