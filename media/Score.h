#pragma once
namespace media {
}
