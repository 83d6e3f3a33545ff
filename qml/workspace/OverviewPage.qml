pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import Varnis.App

// What is already known of the app.
Item {
    id: page
    objectName: "overviewPage"
    required property OverviewViewModel model

    ListView {
        id: list
        anchors.fill: parent
        model: page.model.rows
        interactive: false
        spacing: 6

        delegate: Row {
            id: row
            required property string label
            required property string value
            required property string accessibleName
            width: list.width
            spacing: 16
            Accessible.role: Accessible.StaticText
            Accessible.name: accessibleName
            Label {
                id: labelText
                width: 130
                text: row.label
                color: palette.placeholderText
                elide: Text.ElideRight
            }
            Label {
                width: Math.max(0, row.width - labelText.width - row.spacing)
                text: row.value
                textFormat: Text.PlainText
                elide: Text.ElideRight
            }
        }
    }
}
