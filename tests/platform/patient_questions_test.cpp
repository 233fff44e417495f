// SPDX-License-Identifier: MIT
#include "platform/patient_questions.h"

#include "platform/mounted_volumes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <future>

namespace havrel::platform {
namespace {

using namespace std::chrono_literals;

PatientQuestions::Deadline inAMoment()
{
    return std::chrono::steady_clock::now() + 20ms;
}

/// Far enough not to be met: an answer that never comes fails the test.
PatientQuestions::Deadline late()
{
    return std::chrono::steady_clock::now() + 60s;
}

MountedVolume answerOf(const char* mountPoint)
{
    MountedVolume answer;
    answer.fileSystem.mountPoint = mountPoint;
    return answer;
}

TEST(PatientQuestions, BringAnAnswer)
{
    PatientQuestions& questions = PatientQuestions::shared();
    const auto ticket = questions.ask(1, [] { return answerOf("/a"); });
    const auto answer = PatientQuestions::wait(ticket, late());
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->fileSystem.mountPoint, "/a");
    EXPECT_TRUE(PatientQuestions::wait(ticket, inAMoment())) << "it stays";
}

TEST(PatientQuestions, GiveUpWaitingAndTakeUpAgainWithoutASecondQuestion)
{
    PatientQuestions& questions = PatientQuestions::shared();
    const auto release = std::make_shared<std::promise<void>>();
    const auto asked = std::make_shared<std::atomic<int>>(0);
    const auto question = [asked, released = release->get_future().share()] {
        ++*asked;
        released.wait();
        return answerOf("/hangs");
    };
    const auto first = questions.ask(2, question);
    EXPECT_FALSE(PatientQuestions::wait(first, inAMoment()));
    const auto second = questions.ask(2, question);
    EXPECT_EQ(first, second);
    EXPECT_TRUE(PatientQuestions::wait(questions.ask(3, [] { return answerOf("/b"); }), late())) << "others go on";

    release->set_value();
    EXPECT_TRUE(PatientQuestions::wait(second, late()));
    EXPECT_EQ(*asked, 1);
    EXPECT_TRUE(PatientQuestions::wait(questions.ask(2, question), late())) << "answered, so asked anew";
    EXPECT_EQ(*asked, 2);
}

TEST(PatientQuestions, HaveNoAnswerWithoutATicket)
{
    EXPECT_FALSE(PatientQuestions::wait(nullptr, late()));
}

} // namespace
} // namespace havrel::platform
