#include "model/streams/TwitterDirectMessagesConversationManager.h"

#include <benchmark/benchmark.h>

namespace {

using Manager = TwitterDirectMessagesConversationManager;

// 2,000 received messages by 200 people in turn, newest first; people with ID and name, as records have them.
TwitterDirectMessageList messagesOf200People()
{
    QList<TwitterUserPtr> people;
    for (int i = 0; i < 200; ++i) {
        auto user = std::make_shared<TwitterUser>();
        user->setUserID(QString::number(1000 + i));
        user->setUsername(QStringLiteral("person%1").arg(i));
        people.append(user);
    }
    const QDateTime newest(QDate(2026, 11, 22), QTime(12, 0), Qt::UTC);
    TwitterDirectMessageList messages;
    for (int i = 0; i < 2000; ++i) {
        auto message = std::make_shared<TwitterDirectMessage>();
        message->setMessageID(QString::number(10'000 - i));
        message->setDate(newest.addSecs(-60 * i));
        message->setSender(people[i * 7 % people.size()]);
        messages.append(message);
    }
    return messages;
}

std::shared_ptr<Manager> emptyManager()
{
    return std::make_shared<Manager>(nullptr, nullptr);
}

// At most 20 ms.
void folding2000Messages(benchmark::State& state)
{
    const TwitterDirectMessageList messages = messagesOf200People();
    for (auto _ : state) {
        state.PauseTiming();
        auto manager = emptyManager();
        state.ResumeTiming();
        manager->addMessages(messages, Manager::FromMe::No);
        state.PauseTiming();
        if (manager->conversations().size() != 200)
            state.SkipWithError("200 people make 200 conversations");
        manager.reset();
        state.ResumeTiming();
    }
}
BENCHMARK(folding2000Messages)->Unit(benchmark::kMillisecond);

// At most 5 ms.
void foldingTheSameMessagesAgain(benchmark::State& state)
{
    const TwitterDirectMessageList messages = messagesOf200People();
    const auto manager = emptyManager();
    manager->addMessages(messages, Manager::FromMe::No);
    for (auto _ : state)
        manager->addMessages(messages, Manager::FromMe::No);
}
BENCHMARK(foldingTheSameMessagesAgain)->Unit(benchmark::kMillisecond);

} // namespace
