#pragma once

#include <chrono>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "HLDataSrvc/Host.h"

namespace HLDataSrvc::test {

/// A host with an application folder of the test's choice, which keeps the message boxes instead of showing
/// them.
class RecordingHost final : public Host {
 public:
  struct Message {
    std::string text;
    std::string title;
    friend bool operator==(const Message&, const Message&) = default;
  };

  explicit RecordingHost(std::string folder) : m_folder(std::move(folder)) {}

  std::string ApplicationFolder() const override { return m_folder; }
  std::string FindFile(const std::string& path) const override { return m_system->FindFile(path); }
  void ShowMessage(const std::string& text, const std::string& title) override {
    messages.push_back({text, title});
  }
  std::chrono::year_month_day Today() const override {
    return std::chrono::year(2024) / std::chrono::September / std::chrono::day(5);
  }

  std::vector<Message> messages;

 private:
  std::string m_folder;
  std::shared_ptr<Host> m_system = SystemHost();
};

}  // namespace HLDataSrvc::test
