#pragma once

/// @file
/// The numbers in the stream form of a class, for programs that read such records by themselves.
/// `docs/formats.md` has the form; `ZTMetaClassBuilder` reads and writes it.

/// The bits that go with an invokable and with a property. Readers ignore the others; writers
/// leave them at 0.
struct ZTClassRecordFlags {
    static constexpr unsigned short ConstInvokable = 1;
    static constexpr unsigned short Event = 2;
    static constexpr unsigned short AllOfInvokable = ConstInvokable | Event;

    static constexpr unsigned char Readable = 1;
    static constexpr unsigned char Writable = 2;
    static constexpr unsigned char AllOfProperty = Readable | Writable;
};
