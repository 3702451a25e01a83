#pragma once

/// A number with its getter and setter, to be put into a class.
#define FIELD(name)                                                                                \
public:                                                                                            \
    int name() const { return m_##name; }                                                          \
    void set_##name(int value) { m_##name = value; }                                               \
                                                                                                   \
private:                                                                                           \
    int m_##name = 0;
