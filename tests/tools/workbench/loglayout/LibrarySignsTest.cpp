#include "LibrarySigns.h"

#include <gmock/gmock.h>

using namespace Vorn::Workbench;

namespace {

/// What is found from the message on, or "none".
std::string messageIn(std::string_view line)
{
    const std::optional<std::size_t> at = libraryMessageIn(line);
    return at ? std::string(line.substr(*at)) : "none";
}

} // namespace

TEST(LibrarySigns, SomeMessagesAreNobodyElses)
{
    for (const std::string message :
         {"Vorn::InputEvent(3) click", "Stored:(x)", "Found already event for code:30",
          "Double key press detected and new press event received -> drop",
          "Received release for non existing press -> drop", " ---> added '/dev/input/event0'",
          "Event device /dev/input/event0 ready", "Cannot open input device /dev/input/event0",
          "Error reading from event device /dev/input/event0",
          "Linux Input Listerner does not exists", " type: 1 code:30 value:1"})
    {
        EXPECT_EQ(messageIn(message), message);
        EXPECT_EQ(messageIn("DEBUG:" + message), message);
        EXPECT_EQ(messageIn("DEBUG Input:" + message), message);
        EXPECT_EQ(messageIn("x" + message), "none") << "the end of a word";
        EXPECT_TRUE(beginsLikeLibraryMessage(message)) << message;
    }
}

TEST(LibrarySigns, OtherMessagesNeedTheNameOfALogger)
{
    for (const std::string message :
         {"Enter x", "key:30 value 1", "bustype: 25", "name: panel", "Removing /dev/input/event0",
          "Dev /dev/input/event0: panel", "Short read on event device /dev/input/event0",
          "Linux input listener for /dev/input/event0 does not exists",
          "Duplicate key in key input map: 30, overwriting old value",
          "Trying to remove a non-existing key 30", "ioctl error: -1", "Handler x",
          "Device: a; id: b"})
    {
        EXPECT_EQ(messageIn(message), "none") << message;
        EXPECT_EQ(messageIn("DEBUG " + message), "none") << message;
        for (const std::string start : {"DEBUG Input: ", "DEBUG BasicInputHandler: ",
                                        "DEBUG LinuxInputListener: ", "DEBUG KeyProcessing: "})
            EXPECT_EQ(messageIn(start + message), message);
        EXPECT_TRUE(beginsLikeLibraryMessage(message)) << message;
    }
    EXPECT_FALSE(beginsLikeLibraryMessage("x Enter x"));
    EXPECT_FALSE(beginsLikeLibraryMessage(""));
}

TEST(LibrarySigns, ALoggerIsAWord)
{
    EXPECT_EQ(messageIn("Input name: x"), "name: x");
    EXPECT_EQ(messageIn(" Input name: x"), "name: x");
    EXPECT_EQ(messageIn("x Input name: x"), "name: x");
    EXPECT_EQ(messageIn("[Input]name: x"), "name: x");
    for (const char *other : {"xInput", " xInput", "Inputs", "Input0", "9Input", "_Input", "ZInput",
                              "AInput", "InputA", "InputZ", "Inputa", "Inputz"})
        EXPECT_EQ(messageIn(std::string(other) + " name: x"), "none") << other;
    for (const char *own : {"/Input", ":Input", "@Input", "[Input", "`Input", "{Input"})
        EXPECT_EQ(messageIn(std::string(own) + " name: x"), "name: x") << own;
    EXPECT_EQ(messageIn("UserInput Input name: x"), "name: x") << "the second one";
}

TEST(LibrarySigns, ALoggerIsInFrontOfTheMessage)
{
    EXPECT_EQ(messageIn("Enter LinuxInputListener::readData: 5"), "none");
    EXPECT_EQ(messageIn("name: Input"), "none");
    EXPECT_EQ(messageIn("x name: Input"), "none");
    EXPECT_EQ(messageIn("LinuxInputListener Enter LinuxInputListener::readData: 5"),
              "Enter LinuxInputListener::readData: 5");
}

TEST(LibrarySigns, TheMessageBeginsAtTheFirstSign)
{
    EXPECT_EQ(messageIn("Input: name: Event device x"), "name: Event device x");
    EXPECT_EQ(messageIn("Input: Event device name: x"), "Event device name: x");
    EXPECT_EQ(messageIn("Stored:(Event device )"), "Stored:(Event device )");
    EXPECT_EQ(messageIn("Event device Stored:("), "Event device Stored:(");
    EXPECT_EQ(messageIn("Input: Dev name: x"), "Dev name: x");
    EXPECT_EQ(messageIn("Input: name: Dev x"), "name: Dev x");
    EXPECT_EQ(messageIn("Input: xname: x"), "none") << "the end of a word";
}

TEST(LibrarySigns, ARecordHasACode)
{
    EXPECT_EQ(messageIn("content type: text"), "none");
    EXPECT_EQ(messageIn("x: type: 1"), "none");
    EXPECT_EQ(messageIn("x:  type: 1 code:2"), " type: 1 code:2");
    EXPECT_EQ(messageIn(" code:2:  type: 1"), "none");
}

TEST(LibrarySigns, ACutLoggerIsCompletedIfItIsOne)
{
    EXPECT_EQ(completedLogger("utListener"), "LinuxInputListener");
    EXPECT_EQ(completedLogger("Handler"), "BasicInputHandler");
    EXPECT_EQ(completedLogger("g"), "KeyProcessing");
    EXPECT_EQ(completedLogger("Input"), "Input");
    EXPECT_EQ(completedLogger("r"), "r") << "of two";
    EXPECT_EQ(completedLogger("x"), "x");
    EXPECT_EQ(completedLogger("xLinuxInputListener"), "xLinuxInputListener");
    EXPECT_EQ(completedLogger("LinuxInput"), "LinuxInput") << "the front of one";
    EXPECT_TRUE(isLibraryLogger("Input"));
    EXPECT_FALSE(isLibraryLogger("Inpu"));
    EXPECT_FALSE(isLibraryLogger(""));
    EXPECT_EQ(libraryLoggers().toStdString(),
              "'Input', 'BasicInputHandler', 'LinuxInputListener', 'KeyProcessing'");
}
