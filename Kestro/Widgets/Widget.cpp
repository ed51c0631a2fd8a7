#include "Kestro/Widgets/Widget.h"

namespace kestro {

Widget::Widget(WidgetKind kind)
    : m_kind(kind)
{
}

QString Widget::title() const { return kestro::title(m_kind); }

QString Widget::symbol() const { return kestro::symbol(m_kind); }

} // namespace kestro
