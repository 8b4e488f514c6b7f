#include "shell/window_role.h"

#include <QAccessibleWidget>
#include <QVariant>

namespace shell {
namespace {

constexpr char kRoleProperty[] = "sofravanAccessibleRole";

QAccessibleInterface* roleFromProperty(const QString& /*className*/, QObject* object) {
    auto* widget = qobject_cast<QWidget*>(object);
    if (widget == nullptr)
        return nullptr;
    const QVariant role = widget->property(kRoleProperty);
    if (!role.isValid())
        return nullptr;
    return new QAccessibleWidget(widget, static_cast<QAccessible::Role>(role.toInt()));
}

}  // namespace

void setAccessibleRole(QWidget* window, QAccessible::Role role) {
    static const bool installed = [] {
        QAccessible::installFactory(roleFromProperty);
        return true;
    }();
    static_cast<void>(installed);
    window->setProperty(kRoleProperty, static_cast<int>(role));
}

}  // namespace shell
