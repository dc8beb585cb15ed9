#pragma once

/// @file
/// Export macro of libktLegacyDocument.

#define KT_LEGACY_DOCUMENT_API __attribute__((visibility("default")))
