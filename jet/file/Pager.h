#pragma once
// contract sketch, being written
namespace jet {
class PageHandle {};
class Pager;
/// Collects changed pages; Commit hands them to the file together; the destructor undoes what was not committed.
class ChangeUnit {
 public:
  explicit ChangeUnit(Pager& pager);
  ~ChangeUnit();
  void Commit();
};
}  // namespace jet
