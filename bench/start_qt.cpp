// What a service without a display takes with Qt's core, as tests/consumer/core_consumer.cpp with ours: a result is
// computed, without an event loop.
#include <QString>

int main() { return QString::number(2 * QStringLiteral("8.26").toDouble(), 'f', 2) == QStringLiteral("16.52") ? 0 : 1; }
