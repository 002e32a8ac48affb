/*
 * Identifiers chosen once for FileEncoder and never changed.
 *
 * The class, interface and library identifiers are what registered hosts and
 * compiled clients know the control by. The key identifier is part of every
 * encryption key: changing it would make every existing ciphertext
 * undecryptable.
 *
 * Each is written here once, as UUID text, which the type library source and
 * the C and C++ code both use as it stands.
 */
#ifndef FILE_ENCODER_IDENTIFIERS_H
#define FILE_ENCODER_IDENTIFIERS_H

#define FE_UUID_LIBRARY "9111a6b3-d1f9-4deb-b659-e4d71d53d53b"
#define FE_UUID_INTERFACE "32ff9d77-2b24-48fb-9677-95e4c34cf7de"
#define FE_UUID_EVENTS "b15ccabb-d07b-4d93-b429-861be05e1a8d"
#define FE_UUID_CLASS "cea1f331-1b9d-4232-b01e-c3a7c454eefa"
#define FE_UUID_KEY_IDENTIFIER "fd91a26c-3e37-4b0c-bbc2-cb031bf7130a"

#endif /* FILE_ENCODER_IDENTIFIERS_H */
