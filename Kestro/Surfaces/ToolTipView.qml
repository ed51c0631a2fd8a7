import QtQuick
import Kestro.Style

ToolTipBubble { }
