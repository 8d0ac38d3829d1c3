#include <QAbstractEventDispatcher>

#include <gtest/gtest.h>

namespace {

// The tests of listener, detectors and hot-plug run on both dispatchers; this one makes sure of it.
TEST(EventDispatcher, IsTheOneThatWasAskedFor)
{
    const QString name =
        QString::fromLatin1(QAbstractEventDispatcher::instance()->metaObject()->className());
    if (qEnvironmentVariableIsSet("QT_NO_GLIB"))
        EXPECT_EQ(name, "QEventDispatcherUNIX");
    else
        EXPECT_TRUE(name.contains(QLatin1String("Glib"))) << name.toStdString();
}

} // namespace
