// A flag that is set for as long as something is under way, whatever way it ends.
#pragma once

namespace kestrum::addin {

class Busy {
  public:
    explicit Busy(bool& flag) : m_flag(flag) { m_flag = true; }
    ~Busy() { m_flag = false; }
    Busy(const Busy&) = delete;
    Busy& operator=(const Busy&) = delete;

  private:
    bool& m_flag;
};

}  // namespace kestrum::addin
