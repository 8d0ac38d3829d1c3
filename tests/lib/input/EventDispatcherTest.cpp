#include <QAbstractEventDispatcher>

#include <gtest/gtest.h>

namespace {

// The tests of listener, detectors and hot-plug are run on both; this one sees to it that they are.
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
