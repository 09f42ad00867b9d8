#pragma once

#include <QByteArray>

#include <memory>

/// A person's avatar, ready to be drawn. What is in it is the interface's affair; the model only keeps it.
/// Made on the background thread and destroyed on any.
class TwitterProfileImage {
public:
    TwitterProfileImage() = default;
    TwitterProfileImage(const TwitterProfileImage&) = delete;
    TwitterProfileImage& operator=(const TwitterProfileImage&) = delete;
    virtual ~TwitterProfileImage() = default;
};

using TwitterProfileImagePtr = std::shared_ptr<const TwitterProfileImage>;

/// Decodes the bytes of a picture from the network and rounds its corners; null when they are no picture, or
/// one too large. Called on the background thread.
using TwitterProfileImageMaker = TwitterProfileImagePtr (*)(const QByteArray& data);
