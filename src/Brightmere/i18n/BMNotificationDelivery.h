#pragma once

/// Where a subscriber of the localisation notifications is called.
///
/// The manager posts from the thread its service answers arrive on (the core
/// library's network thread) or from the thread that changed the language.
/// PostingThread calls the subscriber there, during the post. MainThread is
/// for subscribers that touch views: a post made on the main thread calls them
/// at once, a post from any other thread is queued to the main thread, and a
/// queued call is dropped when the subscriber unsubscribed in the meantime (so
/// a subscriber that unsubscribes in its destructor is never called late).
enum class BMNotificationDelivery {
    PostingThread,
    MainThread,
};
