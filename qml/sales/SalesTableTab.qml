pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.Theme
import Varnis.App

// Apple's table as it came: the columns and the first rows. The column names stay on top while
// the rows scroll, and both move together sideways. (Not a ListView header: on Qt 6.4 a header in
// a bound component is never made.)
ColumnLayout {
    id: tab
    required property SalesViewModel model
    readonly property int cellWidth: 140
    readonly property int headerHeight: 26
    spacing: 4

    Label {
        Layout.fillWidth: true
        visible: text !== ""
        text: tab.model.rowsNote
        wrapMode: Text.Wrap
        color: palette.placeholderText
    }
    Flickable {
        id: sideways
        Layout.fillWidth: true
        Layout.fillHeight: true
        clip: true
        contentWidth: Math.max(width, tab.model.columns.length * tab.cellWidth)
        contentHeight: height
        flickableDirection: Flickable.HorizontalFlick
        boundsBehavior: Flickable.StopAtBounds
        ScrollBar.horizontal: ScrollBar {}

        Rectangle {
            width: sideways.contentWidth
            height: tab.headerHeight
            color: Theme.noticeBackground
            Row {
                Repeater {
                    model: tab.model.columns
                    delegate: Label {
                        required property string modelData
                        width: tab.cellWidth
                        height: tab.headerHeight
                        leftPadding: 4
                        verticalAlignment: Text.AlignVCenter
                        text: modelData
                        font.bold: true
                        elide: Text.ElideRight
                    }
                }
            }
        }
        ListView {
            objectName: "reportRowsList"
            y: tab.headerHeight
            width: sideways.contentWidth
            height: sideways.height - tab.headerHeight
            clip: true
            model: tab.model.rows
            boundsBehavior: Flickable.StopAtBounds
            ScrollBar.vertical: ScrollBar {}
            Accessible.name: "Apples Tabelle"
            delegate: Row {
                id: line
                required property var cells
                required property int index
                objectName: "reportRow_" + index
                Repeater {
                    model: line.cells
                    delegate: Label {
                        required property string modelData
                        width: tab.cellWidth
                        height: 22
                        leftPadding: 4
                        verticalAlignment: Text.AlignVCenter
                        text: modelData
                        elide: Text.ElideRight
                    }
                }
            }
        }
    }
}
