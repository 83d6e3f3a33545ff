pragma ComponentBehavior: Bound
import QtQuick
import QtQuick.Controls
import QtQuick.Layouts
import Varnis.App

// The builds of the app with their beta state, and the chosen build's details beside them.
RowLayout {
    id: tab
    required property TestFlightViewModel model
    spacing: 8

    ColumnLayout {
        Layout.fillHeight: true
        Layout.preferredWidth: 320
    }
    BetaBuildDetailPane {
        Layout.fillWidth: true
        Layout.fillHeight: true
        model: tab.model
    }
}
