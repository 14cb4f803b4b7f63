#pragma once
typedef float element;
