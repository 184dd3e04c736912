#pragma once

/// Sets a flag for the length of a scope and gives it back its value afterwards.
class FlagScope final
{
public:
    explicit FlagScope(bool& flag)
        : m_flag(flag)
        , m_previous(flag)
    {
        m_flag = true;
    }
    ~FlagScope() { m_flag = m_previous; }
    FlagScope(const FlagScope&) = delete;
    FlagScope& operator=(const FlagScope&) = delete;

private:
    bool& m_flag;
    bool m_previous;
};
