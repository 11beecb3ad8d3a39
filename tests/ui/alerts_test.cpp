#include "tarnvik/ui/alerts.hpp"

#include <gtest/gtest.h>

#include <deque>

#include "support/temp_dir.hpp"

namespace tarnvik {
namespace {

// Answers alerts as a script says, and remembers what it was asked to show.
struct ScriptedPresenter : AlertPresenter {
  std::deque<std::function<Integer(Alert&)>> answers;
  std::vector<std::string> shown;
  Integer runModal(Alert& alert) override {
    shown.push_back("modal " + alert.messageText().utf8());
    auto answer = std::move(answers.front());
    answers.pop_front();
    return answer(alert);
  }
  void beginSheetModal(Alert& alert, Window& window,
                       std::function<void(Integer)> completion) override {
    shown.push_back("sheet " + alert.messageText().utf8() + " on " + window.title().utf8());
    auto answer = std::move(answers.front());
    answers.pop_front();
    const Integer response = answer(alert);
    MainQueue::async([completion, response] { completion(response); });
  }
};

class AlertsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    UserDefaults::setDefaultsDirectory(String(dir.path().string()));
    Alert::setPresenter(presenter);
  }
  void TearDown() override {
    Alert::setPresenter(nullptr);
    MainQueue::drain();
    UserDefaults::setDefaultsDirectory(String());
  }
  AlertRef suppressible(const String& key) {
    return ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyInformativeText(
        u"Replace the clip?", u"Replace", u"Cancel", String(), key, u"100% of A001 is used");
  }
  testing::TempDir dir;
  std::shared_ptr<ScriptedPresenter> presenter = std::make_shared<ScriptedPresenter>();
};

TEST_F(AlertsTest, TickingTheBoxSuppressesTheNextShowing) {
  const auto alert = suppressible(u"skipReplace");
  EXPECT_EQ(alert->informativeText().utf8(), "100% of A001 is used");  // no format applied
  EXPECT_EQ(alert->buttonTitles().size(), 2u);
  const auto box = std::dynamic_pointer_cast<Button>(alert->accessoryView());
  ASSERT_TRUE(box);
  EXPECT_EQ(box->title().utf8(), "Don't show this message again");
  EXPECT_EQ(box->buttonType(), ButtonType::Switch);
  EXPECT_EQ(box->controlSize(), 1);
  EXPECT_GT(box->frame().size.width, 0);
  EXPECT_FALSE(box->state());
  EXPECT_EQ(dontShowAgainDefaultsKey(alert).utf8(), "skipReplace");

  // The user ticks the box and chooses "Cancel".
  presenter->answers.push_back([](Alert& a) {
    std::dynamic_pointer_cast<Button>(a.accessoryView())->setState(true);
    return a.responseForButtonAtIndex(1);
  });
  EXPECT_EQ(runModalIfShouldShowWithDefaultResponse(alert, 42), NSAlertAlternateReturn);
  EXPECT_TRUE(UserDefaults::standardUserDefaults().boolForKey(u"skipReplace"));

  // Next time nothing is shown: the default response comes back at once.
  const auto again = suppressible(u"skipReplace");
  EXPECT_TRUE(std::dynamic_pointer_cast<Button>(again->accessoryView())->state());  // shows ticked
  EXPECT_EQ(runModalIfShouldShowWithDefaultResponse(again, 42), 42);
  EXPECT_EQ(presenter->shown, std::vector<std::string>{"modal Replace the clip?"});
}

TEST_F(AlertsTest, SheetsAnswerThroughTheMainQueue) {
  auto window = std::make_shared<Window>();
  window->setTitle(u"Clips");
  const auto alert = suppressible(u"skipSheet");
  std::vector<Integer> responses;
  presenter->answers.push_back([](Alert& a) { return a.responseForButtonAtIndex(0); });
  beginSheetModalIfShouldShowForWindow(alert, window, 7,
                                       [&](Integer r) { responses.push_back(r); });
  EXPECT_TRUE(responses.empty());
  MainQueue::drain();
  EXPECT_EQ(responses, std::vector<Integer>{NSAlertDefaultReturn});

  UserDefaults::standardUserDefaults().setBool(true, u"skipSheet");
  beginSheetModalIfShouldShowForWindow(alert, window, 7,
                                       [&](Integer r) { responses.push_back(r); });
  EXPECT_EQ(responses.size(), 1u);  // never before the operation returned
  EXPECT_EQ(MainQueue::drain(), 1u);
  EXPECT_EQ(responses.back(), 7);
  beginSheetModalIfShouldShowForWindow(alert, window, 7, nullptr);  // nothing to call
  EXPECT_EQ(MainQueue::pending(), 0u);
  EXPECT_EQ(presenter->shown, std::vector<std::string>{"sheet Replace the clip? on Clips"});
}

TEST_F(AlertsTest, AnAlertWithoutAKeyIsAlwaysShown) {
  UserDefaults::standardUserDefaults().setBool(true, u"anything");
  const auto plain =
      ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonInformativeTextWithFormat(
          u"Offload done", String(), String(), u"Show", u"%d clips, %@", 12, u"100% verified");
  EXPECT_EQ(plain->informativeText().utf8(), "12 clips, 100% verified");
  EXPECT_EQ(plain->buttonTitles(), (std::vector<String>{u"OK", u"Show"}));
  EXPECT_EQ(plain->accessoryView(), nullptr);
  EXPECT_TRUE(dontShowAgainDefaultsKey(plain).isNil());
  presenter->answers.push_back([](Alert& a) { return a.responseForButtonAtIndex(1); });
  EXPECT_EQ(runModalIfShouldShowWithDefaultResponse(plain, 5), NSAlertOtherReturn);

  const auto titled =
      ke_alertWithMessageTextDefaultButtonAlternateButtonOtherButtonDontShowAgainDefaultsKeyDontShowAgainMessageInformativeText(
          u"m", u"OK", String(), String(), u"k", u"Never again", u"i");
  EXPECT_EQ(std::dynamic_pointer_cast<Button>(titled->accessoryView())->title().utf8(),
            "Never again");
}

}  // namespace
}  // namespace tarnvik
