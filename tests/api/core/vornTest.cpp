#include "vorn.h"

#include "QtDifferences.h"
#include "vornTestTypes.h"

#include <QCoreApplication>
#include <QSignalSpy>
#include <QThread>

#include <gmock/gmock.h>

struct Unregistered
{
    int number;
};

void Receiver::onUnregistered(const Unregistered &value)
{
    numbers.push_back(value.number);
}

namespace {

TEST(CheckedConnection, DeliversTheSignal)
{
    Sender sender;
    Receiver receiver;
    const QMetaObject::Connection connection =
        Vorn::connect(&sender, &Sender::number, &receiver, &Receiver::onNumber);
    EXPECT_TRUE(connection);
    Q_EMIT sender.number(7);
    EXPECT_THAT(receiver.numbers, testing::ElementsAre(7));
}

TEST(CheckedConnection, AcceptsAnUnregisteredTypeWhenDeliveredDirectly)
{
    Sender sender;
    Receiver receiver;
    Vorn::connect(&sender, &Sender::unregistered, &receiver, &Receiver::onUnregistered);
    Vorn::connect(&sender, &Sender::unregistered, &receiver, &Receiver::onUnregistered,
                  Qt::DirectConnection);
    Q_EMIT sender.unregistered({3});
    EXPECT_THAT(receiver.numbers, testing::ElementsAre(3, 3));
}

TEST(CheckedConnection, AcceptsRegisteredTypesAndPointersWhenQueued)
{
    Sender sender;
    Receiver receiver;
    qRegisterMetaType<RegisteredByName>("RegisteredByName");
    Vorn::connect(&sender, &Sender::number, &receiver, &Receiver::onNumber, Qt::QueuedConnection);
    Vorn::connect(&sender, &Sender::registeredByName, &receiver, &Receiver::onRegisteredByName,
                  Qt::QueuedConnection);
    Vorn::connect(&sender, &Sender::declared, &receiver, &Receiver::onDeclared,
                  Qt::QueuedConnection);
    Vorn::connect(&sender, &Sender::pointer, &receiver, &Receiver::onPointer, Qt::QueuedConnection);
    Unmentioned pointed{4};
    Q_EMIT sender.number(1);
    Q_EMIT sender.registeredByName({2});
    Q_EMIT sender.declared({3});
    qRegisterMetaType<Unmentioned *>("Unmentioned*");
    Q_EMIT sender.pointer(&pointed);
    EXPECT_THAT(receiver.numbers, testing::IsEmpty());
    QCoreApplication::processEvents();
    EXPECT_THAT(receiver.numbers, testing::ElementsAre(1, 2, 3, 4));
}

TEST(CheckedConnection, VerifiesOnlyWhatIsQueued)
{
    Sender sender;
    Receiver receiver;
    const auto verify = [&](auto signal, Qt::ConnectionType type) {
        return Vorn::verifyConnectionSignalParameters(&sender, signal, &receiver, type);
    };
    EXPECT_TRUE(verify(&Sender::unregistered, Qt::AutoConnection));
    EXPECT_TRUE(verify(&Sender::unregistered, Qt::DirectConnection));
    EXPECT_FALSE(verify(&Sender::unregistered, Qt::QueuedConnection));
    EXPECT_FALSE(verify(&Sender::numberAndUnregistered, Qt::QueuedConnection));
    EXPECT_FALSE(
        verify(&Sender::unregistered,
               static_cast<Qt::ConnectionType>(Qt::QueuedConnection | Qt::UniqueConnection)));
    EXPECT_TRUE(verify(&Sender::unregistered,
                       static_cast<Qt::ConnectionType>(Qt::AutoConnection | Qt::UniqueConnection)));
    // Waits for the slot, which reads the sender's own arguments.
    EXPECT_TRUE(verify(&Sender::unregistered, Qt::BlockingQueuedConnection));
    EXPECT_TRUE(verify(&Sender::number, Qt::QueuedConnection));
    EXPECT_TRUE(verify(&Sender::numbers, Qt::QueuedConnection));
    EXPECT_TRUE(verify(&Sender::pointer, Qt::QueuedConnection));
    EXPECT_TRUE(verify(&Sender::nothing, Qt::QueuedConnection));
    EXPECT_EQ(verify(&Sender::unmentioned, Qt::QueuedConnection),
              QtDifferences::knowsCompleteTypes);
}

TEST(CheckedConnection, VerifiesAutomaticConnectionsAcrossThreads)
{
    Sender sender;
    Receiver receiver;
    QThread thread;
    receiver.moveToThread(&thread);
    EXPECT_FALSE(Vorn::verifyConnectionSignalParameters(&sender, &Sender::unregistered, &receiver,
                                                        Qt::AutoConnection));
    EXPECT_TRUE(Vorn::verifyConnectionSignalParameters(&sender, &Sender::unregistered, &receiver,
                                                       Qt::DirectConnection));
    EXPECT_TRUE(Vorn::verifyConnectionSignalParameters(&sender, &Sender::number, &receiver,
                                                       Qt::AutoConnection));
}

TEST(CheckedConnection, TakesACallableWithItsContext)
{
    Sender sender;
    Receiver receiver;
    int got = 0;
    Vorn::connect(&sender, &Sender::number, &receiver, [&got](int number) { got = number; });
    Q_EMIT sender.number(9);
    EXPECT_EQ(got, 9);
}

using CheckedConnectionDeathTest = testing::Test;

TEST(CheckedConnectionDeathTest, AQueuedUnregisteredTypeIsFatal)
{
    Sender sender;
    Receiver receiver;
    EXPECT_DEATH(
        Vorn::connect(&sender, &Sender::unregistered, &receiver, &Receiver::onUnregistered,
                      Qt::QueuedConnection),
        "ASSERT: \"verifyConnectionSignalParameters\\(sender, signal, receiver, type\\)\" in file "
        "src/api/core/vorn.h, line [0-9]+");
}

TEST(CheckedConnectionDeathTest, AnUnregisteredTypeAcrossThreadsIsFatal)
{
    Sender sender;
    Receiver receiver;
    QThread thread;
    receiver.moveToThread(&thread);
    EXPECT_DEATH(
        Vorn::connect(&sender, &Sender::unregistered, &receiver, &Receiver::onUnregistered),
        "ASSERT: \"verifyConnectionSignalParameters\\(sender, signal, receiver, type\\)\"");
}

TEST(CheckedConnectionDeathTest, AConnectionWithoutSenderIsFatal)
{
    Receiver receiver;
    EXPECT_DEATH(Vorn::connect(static_cast<Sender *>(nullptr), &Sender::number, &receiver,
                               &Receiver::onNumber),
                 "ASSERT: \"connection\" in file src/api/core/vorn.h, line [0-9]+");
    // The parameters are checked first.
    EXPECT_DEATH(Vorn::connect(static_cast<Sender *>(nullptr), &Sender::unregistered, &receiver,
                               &Receiver::onUnregistered, Qt::QueuedConnection),
                 "ASSERT: \"verifyConnectionSignalParameters");
}

TEST(CheckedConnectionDeathTest, AConnectionWithoutReceiverIsFatal)
{
    Sender sender;
    EXPECT_DEATH(Vorn::connect(&sender, &Sender::number, static_cast<Receiver *>(nullptr),
                               &Receiver::onNumber, Qt::QueuedConnection),
                 "ASSERT: \"connection\"");
}

TEST(CheckedConnectionDeathTest, AFunctionThatIsNoSignalIsFatal)
{
    Sender sender;
    Receiver receiver;
    EXPECT_DEATH(Vorn::connect(&sender, &Sender::noSignal, &receiver, &Receiver::onNumber),
                 "ASSERT: \"connection\"");
}

TEST(CheckedConnectionDeathTest, ASecondUniqueConnectionIsFatal)
{
    Sender sender;
    Receiver receiver;
    Vorn::connect(&sender, &Sender::number, &receiver, &Receiver::onNumber, Qt::UniqueConnection);
    EXPECT_DEATH(Vorn::connect(&sender, &Sender::number, &receiver, &Receiver::onNumber,
                               Qt::UniqueConnection),
                 "ASSERT: \"connection\"");
}

} // namespace
