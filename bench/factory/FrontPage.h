#pragma once

#include <QByteArray>

class PackageStore;

// The page a person sees: what has come in, the newest first, each archive to be downloaded.
QByteArray frontPage(const PackageStore& store);
